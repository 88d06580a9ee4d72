// Compiling and keeping the programs, one per ProgramKey.
#include "gl11/programs.h"

#include <cstdio>
#include <unordered_map>
#include <vector>

namespace {

std::unordered_map<uint64_t, GLuint> g_programs;

// The info log of a shader or program, for the console.
std::string infoLog(GLuint object, bool program) {
    GLint length = 0;
    program ? glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length) : glGetShaderiv(object, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> text(static_cast<size_t>(length > 0 ? length : 1), '\0');
    program ? glGetProgramInfoLog(object, length, nullptr, text.data())
            : glGetShaderInfoLog(object, length, nullptr, text.data());
    return text.data();
}

GLuint compile(GLenum type, const std::string& source) {
    const GLuint shader = glCreateShader(type);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (!ok) {
        std::fprintf(stderr, "gl11: shader refused: %s\n%s", infoLog(shader, false).c_str(), text);
        glDeleteShader(shader);
        return 0;
    }
    return shader;
}

GLuint build(const ProgramKey& key) {
    const GLuint vertex = compile(GL_VERTEX_SHADER, vertexShaderSource(key));
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, fragmentShaderSource(key));
    if (vertex == 0 || fragment == 0) {
        return 0;
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
        std::fprintf(stderr, "gl11: program refused: %s\n", infoLog(program, true).c_str());
        glDeleteProgram(program);
        return 0;
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
    // A refused program is remembered as 0: reported once, never drawn with.
    g_programs.emplace(packed, program);
    return program;
}
