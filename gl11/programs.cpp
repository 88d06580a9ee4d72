// Compiling and keeping the programs, one per ProgramKey.
//
// A shader or program the browser refuses is a fault of the layer that no
// frame can hide (its geometry would silently vanish): it is a fatal report,
// which the page shows. A context lost meanwhile refuses everything too, but
// then its objects are gone as well (glIsShader says no): nothing is reported,
// nothing kept, and the program is made again once the context is back.
#include "gl11/programs.h"

#include "base/fatal.h"
#include "gl11/faults.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace {

const char* const CAPTION = "WEBGL ERROR";

std::unordered_map<uint64_t, GLuint> g_programs;

// The info log of a shader or program.
std::string infoLog(GLuint object, bool program) {
    GLint length = 0;
    program ? glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length) : glGetShaderiv(object, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> text(static_cast<size_t>(length > 0 ? length : 1), '\0');
    program ? glGetProgramInfoLog(object, length, nullptr, text.data())
            : glGetShaderInfoLog(object, length, nullptr, text.data());
    return text.data();
}

[[noreturn]] void refused(const char* what, const std::string& log) {
    fatalReport(CAPTION, what, 1, FatalExit::Normal, log.c_str());
}

// 0 when the context is lost.
GLuint compile(GLenum type, std::string source) {
    if (gl11Faulty(Gl11Fault::RefusedShader)) {
        source += "this is no GLSL\n";
    }
    const GLuint shader = glCreateShader(type);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (!ok) {
        if (!glIsShader(shader)) {
            return 0;
        }
        const std::string log = infoLog(shader, false);
        glDeleteShader(shader);
        refused(type == GL_VERTEX_SHADER ? "The browser refused a vertex shader of the OpenGL 1.1 layer."
                                         : "The browser refused a fragment shader of the OpenGL 1.1 layer.",
                log);
    }
    return shader;
}

// 0 when the context is lost.
GLuint build(const ProgramKey& key) {
    const GLuint vertex = compile(GL_VERTEX_SHADER, vertexShaderSource(key));
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, fragmentShaderSource(key));
    if (vertex == 0 || fragment == 0 || !glIsShader(vertex) || !glIsShader(fragment)) {
        return 0;  // the context is lost (the browser makes no program then)
    }
    GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint ok = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &ok);
    if (!ok) {
        if (!glIsProgram(program)) {
            return 0;
        }
        const std::string log = infoLog(program, true);
        glDeleteProgram(program);
        refused("The browser refused to link a program of the OpenGL 1.1 layer.", log);
    }
    glUniformBlockBinding(program, glGetUniformBlockIndex(program, "Fixed"), FIXED_UNIFORM_BINDING);
    glUniformBlockBinding(program, glGetUniformBlockIndex(program, "Transform"), TRANSFORM_UNIFORM_BINDING);
    const GLint image = glGetUniformLocation(program, "image");
    if (image >= 0) {
        glUseProgram(program);
        glUniform1i(image, 0);
    }
    return program;
}

}  // namespace

GLuint programFor(const ProgramKey& key) {
    const uint64_t packed = key.packed();
    const auto found = g_programs.find(packed);
    if (found != g_programs.end()) {
        return found->second;
    }
    const GLuint program = build(key);
    if (program != 0) {
        g_programs.emplace(packed, program);
    }
    return program;
}

void forgetPrograms() { g_programs.clear(); }
