// gl11 built with its deliberate mistakes (gl11/faults.h), against Mesa:
// each mistake puts its feature's scene further from Mesa's frame than the
// comparison allows (MAX_PIXELS_APART), so a layer that made it would fail
// gl11_layer_test; and a shader the browser refuses is a fatal report.
// Prints, per mistake, how far its scene moved: the figures behind the bound.
#include "gl11/faults.h"
#include "gl11/gl11_platform.h"
#include "tests/gl11/feature_scenes.h"
#include "tests/gl11/scene_comparison.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

struct Mistake {
    Gl11Fault fault;
    SceneIndex scene;  // the scene of the feature it breaks
};
void PrintTo(const Mistake& mistake, std::ostream* out) { *out << gl11FaultName(mistake.fault); }

const Mistake MISTAKES[] = {
    {Gl11Fault::NoColourMaterial, SCENE_POSITIONAL_LIGHTS},
    {Gl11Fault::NoAttenuation, SCENE_POSITIONAL_LIGHTS},
    {Gl11Fault::NoSpotExponent, SCENE_SPOT_LIGHTS},
    {Gl11Fault::NoModelAmbient, SCENE_GLOBAL_AMBIENT},
    {Gl11Fault::LocalViewer, SCENE_SPECULAR},
    {Gl11Fault::LastVertexFlat, SCENE_FLAT_SHADING},
    {Gl11Fault::FirstVertexQuads, SCENE_FLAT_SHADING},
    {Gl11Fault::FirstVertexLines, SCENE_FLAT_SHADING},
    {Gl11Fault::QuadDiagonal, SCENE_SMOOTH_SHADING},
    {Gl11Fault::RadialFog, SCENE_FOG},
    {Gl11Fault::FlippedTexture, SCENE_TEXTURE_MODULATE},
    {Gl11Fault::DecalIgnoresAlpha, SCENE_TEXTURE_DECAL},
    {Gl11Fault::SphereMapNormal, SCENE_SPHERE_MAP},
    {Gl11Fault::OverBlend, SCENE_BLEND_FUNCTIONS},
    {Gl11Fault::FrontFaceIgnored, SCENE_DEPTH_AND_CULL},
    {Gl11Fault::UnbatchedDepth, SCENE_DEPTH_AND_CULL},
    {Gl11Fault::WiderView, SCENE_MATRIX_STACKS},
    {Gl11Fault::NormalsByModelView, SCENE_MATRIX_STACKS},
    {Gl11Fault::ZeroNormalMatrix, SCENE_SINGULAR_MODEL_VIEW},
};

class FaultyLayer : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openEglContexts(&why)) << why;
    }
    void TearDown() override { gl11SetFault(Gl11Fault::None); }
};

class DeliberateMistake : public FaultyLayer, public ::testing::WithParamInterface<Mistake> {};

TEST_P(DeliberateMistake, PutsItsFeaturesSceneFurtherFromMesaThanTheBound) {
    const Mistake& mistake = GetParam();
    const char* scene = reference_scenes::SCENES[mistake.scene].name;
    const SceneImage reference = drawReferenceScene(mistake.scene);
    const SceneDifference correct = compareScenes(reference, drawLayerScene(mistake.scene));
    gl11SetFault(mistake.fault);
    const SceneImage wrong = drawLayerScene(mistake.scene);
    const SceneDifference faulty = compareScenes(reference, wrong);
    std::printf("%-20s %-17s pixels apart: %5d with the mistake (largest channel difference %3d), %d without\n",
                scene, gl11FaultName(mistake.fault), faulty.pixelsApart, faulty.largest, correct.pixelsApart);
    EXPECT_LE(correct.pixelsApart, MAX_PIXELS_APART) << scene << " without the mistake";
    EXPECT_GT(faulty.pixelsApart, MAX_PIXELS_APART) << scene << " with " << gl11FaultName(mistake.fault);
    if (faulty.pixelsApart <= MAX_PIXELS_APART) {
        writeComparison(KASKADE_SCENE_SHEETS, std::string(scene) + "-" + gl11FaultName(mistake.fault), reference,
                        wrong);
    }
}

INSTANTIATE_TEST_SUITE_P(Faults, DeliberateMistake, ::testing::ValuesIn(MISTAKES), [](const auto& info) {
    std::string name = gl11FaultName(info.param.fault);
    for (char& c : name) {
        c = c == '-' ? '_' : c;
    }
    return name;
});

// Every deliberate mistake but the refused shader has its scene above.
TEST(DeliberateMistakes, EachHasTheSceneOfItsFeature) {
    for (int f = 1; f < static_cast<int>(Gl11Fault::Count); ++f) {
        const auto fault = static_cast<Gl11Fault>(f);
        bool listed = fault == Gl11Fault::RefusedShader;
        for (const Mistake& mistake : MISTAKES) {
            listed = listed || mistake.fault == fault;
        }
        EXPECT_TRUE(listed) << gl11FaultName(fault);
        EXPECT_EQ(gl11FaultNamed(gl11FaultName(fault)), fault) << "the page finds it by its name";
    }
    EXPECT_EQ(gl11FaultNamed("no-such-mistake"), Gl11Fault::Count);
}

std::string g_fatalHint;

void keepHint(const char* caption, const char* text, const char* hint, int status) {
    g_fatalHint = hint != nullptr ? hint : "";
    throw FatalError(caption, text, status);
}

// A shader the browser refuses ends the show with a fatal report that names
// it, with the compiler's log as its second line, where the page shows it;
// its geometry never just goes missing.
TEST_F(FaultyLayer, ARefusedShaderIsAFatalReportWithTheCompilersLog) {
    gl11SetFault(Gl11Fault::RefusedShader);
    const FatalHook previous = setFatalHook(keepHint);
    try {
        drawLayerScene(SCENE_FLAT_SHADING);
        ADD_FAILURE() << "drawn without a report";
    } catch (const FatalError& error) {
        EXPECT_EQ(error.caption, "WEBGL ERROR");
        EXPECT_EQ(error.text, "The browser refused a vertex shader of the OpenGL 1.1 layer.");
        EXPECT_EQ(error.status, 1);
        EXPECT_NE(g_fatalHint.find("this"), std::string::npos) << "the log names the word it stopped at: " << g_fatalHint;
    }
    setFatalHook(previous);
}

}  // namespace
