// The GLSL the programs are made of, written for one ProgramKey at a time so
// that each program computes only what its state needs (the lights that are
// on, with or without a cone), and the uniform block's values.
#include "gl11/programs.h"

#include "gl11/faults.h"

#include <cmath>
#include <cstring>
#include <string>

namespace {

const char* const FIXED_BLOCK = R"(layout(std140) uniform Fixed {
    mat4 projection;
    vec4 lightModelAmbient;
    vec4 materialAmbient;
    vec4 materialDiffuse;
    vec4 materialSpecular;
    vec4 materialEmission;
    vec4 fogColour;
    vec4 fogParameters;  // density, start, end, shininess
    vec4 lightAmbient[8];
    vec4 lightDiffuse[8];
    vec4 lightSpecular[8];
    vec4 lightPosition[8];
    vec4 lightSpot[8];         // direction, cos(cut-off)
    vec4 lightAttenuation[8];  // constant, linear, quadratic, spot exponent
};
layout(std140) uniform Transform {
    mat4 modelview;
    mat3 normalMatrix;  // the model-view's upper 3 x 3, inverted and transposed
};
)";

// x^y with OpenGL's 0^0 = 1, which GLSL leaves undefined.
const char* const POWER = R"(float power(float x, float y) {
    return y == 0.0 ? 1.0 : pow(max(x, 0.0), y);
}
)";

std::string header() { return std::string("#version 300 es\nprecision highp float;\n") + FIXED_BLOCK; }

// The source of the material's `property` ("materialAmbient", ...) in the key's colour-material mode.
std::string materialTerm(const ProgramKey& key, GLenum property, const char* uniform) {
    const bool both = key.colorMaterial == GL_AMBIENT_AND_DIFFUSE && (property == GL_AMBIENT || property == GL_DIFFUSE);
    const bool tracked = key.colorMaterial == property || both;
    return tracked ? "colour" : uniform;
}

std::string lightTerm(const ProgramKey& key, int i) {
    const std::string n = std::to_string(i);
    std::string code = "    {\n";
    if (key.localLights & (1u << i)) {
        code += "        vec3 toLight = lightPosition[" + n + "].xyz / lightPosition[" + n + "].w - eye;\n"
                "        float distance = length(toLight);\n"
                "        vec3 L = toLight / distance;\n"
                "        vec4 k = lightAttenuation[" + n + "];\n"
                "        float attenuation = 1.0 / (k.x + k.y * distance + k.z * distance * distance);\n";
        if (gl11Faulty(Gl11Fault::NoAttenuation)) {
            code += "        attenuation = 1.0;\n";
        }
    } else {
        code += "        vec3 L = normalize(lightPosition[" + n + "].xyz);\n"
                "        float attenuation = 1.0;\n";
    }
    if (key.spotLights & (1u << i)) {
        code += "        float spot = dot(-L, lightSpot[" + n + "].xyz);\n"
                "        float exponent = " + (gl11Faulty(Gl11Fault::NoSpotExponent) ? std::string("0.0") : "lightAttenuation[" + n + "].w") + ";\n"
                "        attenuation *= spot >= lightSpot[" + n + "].w ? power(spot, exponent) : 0.0;\n";
    }
    code += "        float nl = dot(n, L);\n"
            "        vec3 c = lightAmbient[" + n + "].rgb * ambientM.rgb;\n"
            "        if (nl > 0.0) {\n"
            "            vec3 h = normalize(L + " + (gl11Faulty(Gl11Fault::LocalViewer) ? "normalize(-eye)" : "vec3(0.0, 0.0, 1.0)") + ");\n"
            "            c += nl * lightDiffuse[" + n + "].rgb * diffuseM.rgb;\n"
            "            c += power(dot(n, h), fogParameters.w) * lightSpecular[" + n + "].rgb * specularM.rgb;\n"
            "        }\n"
            "        lit += attenuation * c;\n"
            "    }\n";
    return code;
}

std::string lighting(const ProgramKey& key) {
    std::string code = "    vec4 ambientM = " + materialTerm(key, GL_AMBIENT, "materialAmbient") + ";\n" +
                       "    vec4 diffuseM = " + materialTerm(key, GL_DIFFUSE, "materialDiffuse") + ";\n" +
                       "    vec4 specularM = " + materialTerm(key, GL_SPECULAR, "materialSpecular") + ";\n" +
                       "    vec4 emissionM = " + materialTerm(key, GL_EMISSION, "materialEmission") + ";\n" +
                       "    vec3 n = eyeNormal;\n"
                       "    vec3 lit = emissionM.rgb + ambientM.rgb * lightModelAmbient.rgb;\n";
    for (int i = 0; i < GL11_LIGHTS; ++i) {
        if (key.lights & (1u << i)) {
            code += lightTerm(key, i);
        }
    }
    return code + "    vColour = vec4(clamp(lit, 0.0, 1.0), clamp(diffuseM.a, 0.0, 1.0));\n";
}

const char* const SPHERE_MAP = R"(    vec3 u = normalize(eye);
    vec3 r = u - 2.0 * eyeNormal * dot(eyeNormal, u);
)";
const char* const SPHERE_MAP_END = R"(    float m = 2.0 * sqrt(r.x * r.x + r.y * r.y + (r.z + 1.0) * (r.z + 1.0));
    vTexCoord = r.xy / m + 0.5;
)";

std::string fogFactor(GLenum mode) {
    switch (mode) {
    case GL_EXP: return "exp(-fogParameters.x * vFogDistance)";
    case GL_EXP2: return "exp(-(fogParameters.x * vFogDistance) * (fogParameters.x * vFogDistance))";
    default: return "(fogParameters.z - vFogDistance) / (fogParameters.z - fogParameters.y)";
    }
}

void putVector(float* out, const float* values) { std::memcpy(out, values, 4 * sizeof(float)); }

}  // namespace

std::string vertexShaderSource(const ProgramKey& key) {
    std::string code = header();
    code += "layout(location = 0) in vec3 position;\n"
            "layout(location = 1) in vec3 normal;\n"
            "layout(location = 2) in vec4 colour;\n"
            "layout(location = 3) in vec2 texCoord;\n";
    code += key.flat ? "flat out vec4 vColour;\n" : "out vec4 vColour;\n";
    code += "out vec2 vTexCoord;\nout float vFogDistance;\n";
    code += POWER;
    code += "void main() {\n"
            "    vec4 eyePosition = modelview * vec4(position, 1.0);\n"
            "    gl_Position = projection * eyePosition;\n"
            "    vec3 eye = eyePosition.xyz / eyePosition.w;\n"
            "    vec3 eyeNormal = normalMatrix * normal;\n";
    code += key.lighting ? lighting(key) : "    vColour = colour;\n";
    if (key.sphereMap) {
        code += SPHERE_MAP;
        code += gl11Faulty(Gl11Fault::SphereMapNormal) ? "    r = eyeNormal;\n" : "";
        code += SPHERE_MAP_END;
    } else {
        code += gl11Faulty(Gl11Fault::FlippedTexture) ? "    vTexCoord = vec2(texCoord.s, 1.0 - texCoord.t);\n"
                                                      : "    vTexCoord = texCoord;\n";
    }
    code += gl11Faulty(Gl11Fault::RadialFog) ? "    vFogDistance = length(eye);\n}\n" : "    vFogDistance = abs(eye.z);\n}\n";
    return code;
}

std::string fragmentShaderSource(const ProgramKey& key) {
    std::string code = header();
    code += "uniform sampler2D image;\n";
    code += key.flat ? "flat in vec4 vColour;\n" : "in vec4 vColour;\n";
    code += "in vec2 vTexCoord;\nin float vFogDistance;\nout vec4 fragment;\n"
            "void main() {\n"
            "    vec4 c = vColour;\n";
    if (key.textureEnv == GL_DECAL) {
        code += "    vec4 t = texture(image, vTexCoord);\n";
        code += gl11Faulty(Gl11Fault::DecalIgnoresAlpha) ? "    c.rgb = t.rgb;\n" : "    c.rgb = mix(c.rgb, t.rgb, t.a);\n";
    } else if (key.textureEnv != 0) {
        code += "    c *= texture(image, vTexCoord);\n";
    }
    if (key.fog != 0) {
        code += "    c.rgb = mix(fogColour.rgb, c.rgb, clamp(" + fogFactor(key.fog) + ", 0.0, 1.0));\n";
    }
    return code + "    fragment = c;\n}\n";
}

uint64_t ProgramKey::packed() const {
    return static_cast<uint64_t>(lighting) | static_cast<uint64_t>(lights) << 1 |
           static_cast<uint64_t>(spotLights) << 9 | static_cast<uint64_t>(localLights) << 17 |
           static_cast<uint64_t>(colorMaterial & 0xFFFF) << 25 | static_cast<uint64_t>(flat) << 41 |
           static_cast<uint64_t>(textureEnv & 0xFFFF) << 42 | static_cast<uint64_t>(sphereMap) << 58 |
           static_cast<uint64_t>(fog == GL_EXP ? 1 : fog == GL_EXP2 ? 2 : fog != 0 ? 3 : 0) << 59;
}

ProgramKey programKeyFor(const DrawState& state, bool textured) {
    ProgramKey key;
    key.lighting = (state.enables & ENABLE_LIGHTING) != 0;
    if (key.lighting) {
        key.lights = static_cast<uint8_t>((state.enables / ENABLE_LIGHT0) & 0xFF);
        for (int i = 0; i < GL11_LIGHTS; ++i) {
            if (state.lights[i].spotCutoff != 180.0f) {
                key.spotLights |= static_cast<uint8_t>(1u << i);
            }
            if (state.lights[i].position[3] != 0.0f) {
                key.localLights |= static_cast<uint8_t>(1u << i);
            }
        }
        key.spotLights &= key.lights;
        key.localLights &= key.lights;
        key.colorMaterial = (state.enables & ENABLE_COLOR_MATERIAL) ? state.colorMaterialMode : 0;
        if (gl11Faulty(Gl11Fault::NoColourMaterial)) {
            key.colorMaterial = 0;
        }
    }
    key.flat = state.shadeModel == GL_FLAT;
    if (textured) {
        key.textureEnv = state.textureEnvMode == GL_DECAL ? GL_DECAL : GL_MODULATE;
        key.sphereMap = (state.enables & ENABLE_TEXTURE_GEN_S) && (state.enables & ENABLE_TEXTURE_GEN_T) &&
                        state.texGenModeS == GL_SPHERE_MAP && state.texGenModeT == GL_SPHERE_MAP;
    }
    if (state.enables & ENABLE_FOG) {
        key.fog = state.fogMode;
    }
    return key;
}

void fillTransformUniforms(const DrawState& state, float out[TRANSFORM_UNIFORM_FLOATS]) {
    std::memcpy(out, state.modelview.m, 16 * sizeof(float));
    // std140: each column of a mat3 takes four floats.
    Matrix3 normals = normalMatrix(state.modelview);
    if (gl11Faulty(Gl11Fault::NormalsByModelView)) {
        for (int column = 0; column < 3; ++column) {
            std::memcpy(normals.m + 3 * column, state.modelview.m + 4 * column, 3 * sizeof(float));
        }
    }
    if (gl11Faulty(Gl11Fault::ZeroNormalMatrix) && isSingular(state.modelview)) {
        normals = Matrix3{};
    }
    for (int column = 0; column < 3; ++column) {
        std::memcpy(out + 16 + 4 * column, normals.m + 3 * column, 3 * sizeof(float));
        out[16 + 4 * column + 3] = 0.0f;
    }
}

void fillFixedUniforms(const DrawState& state, float out[FIXED_UNIFORM_FLOATS]) {
    std::memcpy(out, state.projection.m, 16 * sizeof(float));
    putVector(out + 16, state.lightModelAmbient);
    putVector(out + 20, state.material.ambient);
    putVector(out + 24, state.material.diffuse);
    putVector(out + 28, state.material.specular);
    putVector(out + 32, state.material.emission);
    putVector(out + 36, state.fogColour);
    const float fog[4] = {state.fogDensity, state.fogStart, state.fogEnd, state.material.shininess};
    putVector(out + 40, fog);
    if (gl11Faulty(Gl11Fault::NoModelAmbient)) {
        std::memset(out + 16, 0, 3 * sizeof(float));
    }
    constexpr int LIGHT_ARRAY = 4 * GL11_LIGHTS;
    for (int i = 0; i < GL11_LIGHTS; ++i) {
        const LightState& light = state.lights[i];
        putVector(out + 44 + 4 * i, light.ambient);
        putVector(out + 44 + LIGHT_ARRAY + 4 * i, light.diffuse);
        putVector(out + 44 + 2 * LIGHT_ARRAY + 4 * i, light.specular);
        putVector(out + 44 + 3 * LIGHT_ARRAY + 4 * i, light.position);
        const float cosCutoff = static_cast<float>(std::cos(light.spotCutoff * 3.14159265358979323846 / 180.0));
        const float spot[4] = {light.spotDirection[0], light.spotDirection[1], light.spotDirection[2], cosCutoff};
        putVector(out + 44 + 4 * LIGHT_ARRAY + 4 * i, spot);
        const float attenuation[4] = {light.attenuation[0], light.attenuation[1], light.attenuation[2],
                                      light.spotExponent};
        putVector(out + 44 + 5 * LIGHT_ARRAY + 4 * i, attenuation);
    }
}
