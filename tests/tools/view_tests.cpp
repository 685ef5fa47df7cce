// SPDX-License-Identifier: MIT
#include "tests/support/engine_device.hpp"
#include "tests/tools/import_fixture.hpp"

#include "tools/view/viewer.hpp"

#include "vorn/render/emitter_system.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <regex>

namespace {

using namespace Tests;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr unsigned int Width = 160, Height = 120;
constexpr std::uint32_t Background = 0xFF262B33u;

struct Device {
    Device() {
        VornPlatform::ForceHeadless();
        Vorn::Engine::Instance()->Init("View", Width, Height, false);
        Vorn::EmitterSystem::Instance()->Init();
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;
    ~Device() {
        Vorn::Engine::Instance()->Free();
        DestroyWindow(Vorn::Engine::mWnd);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageA(&message);
        Vorn::Engine::isShutdown = Vorn::Engine::isActive = false;
        EXPECT_EQ(VornPlatform::CountLiveObjects(), VornPlatform::LiveObjects());
    }
};

/// A file as the command shows it, without the panel and the grid.
class Shot {
public:
    explicit Shot(const std::string& file, View::Options options = {})
        : mOptions(std::move(options)), mStage(file), mViewer(mOptions, mStage) {
        mViewer.shown.grid = mViewer.shown.panel = false;
        mViewer.FrameAll();
    }
    View::Viewer* operator->() { return &mViewer; }

    Pixels Take() {
        mViewer.Draw();
        Vorn::Graphic::Instance()->Present();
        IDirect3DSurface9* surface = nullptr;
        Vorn::Graphic::GetDevice()->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &surface);
        Pixels pixels = VornPlatform::ReadPixels(surface);
        surface->Release();
        return pixels;
    }
    std::uint32_t Middle() { return Take().at(Height / 2 * Width + Width / 2); }
    /// Of the picture, what is not background (unit: percent).
    long Covered() {
        const Pixels pixels = Take();
        return 100 - 100 * std::count(pixels.begin(), pixels.end(), Background) /
                         static_cast<long>(pixels.size());
    }

private:
    View::Options mOptions;
    View::Stage mStage;
    Device mDevice;
    View::Viewer mViewer;
};

class ViewTest : public ImportFixture {
protected:
    std::string Material(const std::string& red, const std::string& blue) {
        return mFolder.File("paint.json", R"({"Texture": "white.tga", "Emissive": [)" + red +
                                              ", 0, " + blue + ", 1]}");
    }
};

const std::string Game = "samples/game/data/";

TEST_F(ViewTest, EachKindOfFileIsSeen) {
    const std::pair<const char*, long> kinds[] = {
        {"mesh/lantern.mesh", 4},       {"mesh/jelly.mesh", 4},        {"mat/wreck.json", 10},
        {"entity/puffer.ent", 4},       {"entity/decor_wreck.var", 3}, {"shallows.scene", 3},
        {"shaders/basicshader.fx", 10}, {"img/coral1.png", 10}};
    for (const auto& [file, least] : kinds) {
        Shot shot(Game + file);
        EXPECT_GT(shot.Covered(), least) << file;
        EXPECT_THAT(shot->Faults(), IsEmpty()) << file;
        EXPECT_THAT(shot->Subject().Describe(), Not(IsEmpty())) << file;
        const Pixels front = shot.Take();
        shot->Orbit().Turn(90, 30);
        EXPECT_NE(shot.Take(), front) << file << ": the camera turns about it";
    }
}

TEST_F(ViewTest, EmittersPlayAndSkinnedModelsMove) {
    {
        Shot vent(Game + "entity/vent.var");
        EXPECT_EQ(vent.Covered(), 0);
        for (int frame = 0; frame < 120; ++frame)
            vent->Update(1.0f / 60);
        EXPECT_GT(vent.Covered(), 0);
    }
    Shot jelly(Game + "mesh/jelly.mesh");
    const Pixels start = jelly.Take();
    jelly->playing = false;
    jelly->Update(0.5f);
    EXPECT_EQ(jelly.Take(), start);
    jelly->Seek(jelly->Duration() * 0.4f);
    const Pixels later = jelly.Take();
    EXPECT_NE(later, start);
    jelly->Seek(jelly->Duration() * 0.8f);
    jelly.Take();
    jelly->Seek(jelly->Duration() * 0.4f);
    EXPECT_EQ(jelly.Take(), later) << "the pose is that of the time, whatever was before";
}

TEST_F(ViewTest, LinesAreDrawnWhereTheyAreAskedFor) {
    Shot shot(Game + "mesh/jelly.mesh");
    const Pixels bare = shot.Take();
    for (bool View::Shown::*line :
         {&View::Shown::grid, &View::Shown::bones, &View::Shown::volumes, &View::Shown::wire,
          &View::Shown::normals, &View::Shown::texture}) {
        shot->shown.*line = true;
        EXPECT_NE(shot.Take(), bare);
        shot->shown.*line = false;
        EXPECT_EQ(shot.Take(), bare);
    }
}

TEST_F(ViewTest, ChangesAreShownAndBrokenOnesKeepWhatWas) {
    mFolder.File("white.tga", Tga(0xFFFFFFFFu));
    Shot shot(Material("1", "0"));
    EXPECT_EQ(shot.Middle(), 0xFFFF0000u);
    Material("0", "1.0");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF0000FFu);

    mFolder.File("paint.json", "{\n  \"Texture\": \"white.tga\",\n  Emissive");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF0000FFu);
    ASSERT_EQ(shot->Faults().size(), 1u);
    EXPECT_THAT(shot->Faults().begin()->first, HasSubstr("paint.json"));
    EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("Line 3"));

    Material("1", "1");
    mFolder.File("white.tga", Tga(0xFF000080u));
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF000080u) << "its picture has changed too";
    EXPECT_THAT(shot->Faults(), IsEmpty());
    mFolder.File("white.tga", "torn");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF000080u);
    EXPECT_THAT(shot->Faults(), testing::SizeIs(1));
}

TEST_F(ViewTest, ModelsEntitiesAndEffectsChangeToo) {
    const std::string jelly = Vorn::TextFromFile(Game + "mesh/jelly.mesh");
    {
        Shot shot(mFolder.File("thing.mesh", Vorn::TextFromFile(Game + "mesh/pearl.mesh")));
        const Pixels pearl = shot.Take();
        mFolder.File("thing.mesh", jelly.substr(0, jelly.size() / 2));
        shot->CheckFiles();
        EXPECT_EQ(shot.Take(), pearl);
        EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("it ends at byte"));
        mFolder.File("thing.mesh", jelly);
        shot->CheckFiles();
        EXPECT_NE(shot.Take(), pearl);
        EXPECT_THAT(shot->Faults(), IsEmpty());
    }
    const auto entity = [this](const std::string& scale) {
        return mFolder.File("thing.ent", R"({"Type": "thing", "Orientation": {"Z": 1},
            "GraphicsCmpt": {"Mesh": "thing.mesh"}, "Scale": {"X": )" +
                                             scale + "}}");
    };
    {
        Shot shot(entity("1"));
        const Pixels plain = shot.Take();
        entity("\"wide\"");
        shot->CheckFiles();
        EXPECT_EQ(shot.Take(), plain);
        EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("\"X\" in \"Scale\""));
        entity("0.25");
        shot->CheckFiles();
        EXPECT_NE(shot.Take(), plain);
    }
    const auto effect = [this](const std::string& color) {
        return mFolder.File("flat.fx",
                            "float4x4 wvp : WORLDVIEWPROJECTION;\n"
                            "float4 V(float4 p : POSITION) : POSITION { return mul(p, wvp); }\n"
                            "float4 P() : COLOR { return " +
                                color +
                                "; }\n"
                                "technique T { pass { VertexShader = compile vs_3_0 V();\n"
                                "PixelShader = compile ps_3_0 P(); } }\n");
    };
    Shot shot(effect("float4(1, 0, 0, 1)"));
    EXPECT_EQ(shot.Middle(), 0xFFFF0000u);
    effect("colour");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFFFF0000u);
    EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("flat.fx(3): error"));
    effect("float4(0, 1, 0, 1)");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF00FF00u);
}

TEST_F(ViewTest, EffectsFollowWhatTheyInclude) {
    const auto color = [this](const std::string& text) { mFolder.File("color.fxh", text); };
    color("float4 Color() { return float4(1, 0, 0, 1); }\n");
    Shot shot(mFolder.File("flat.fx",
                           "#include \"color.fxh\"\n"
                           "float4x4 wvp : WORLDVIEWPROJECTION;\n"
                           "float4 V(float4 p : POSITION) : POSITION { return mul(p, wvp); }\n"
                           "float4 P() : COLOR { return Color(); }\n"
                           "technique T { pass { VertexShader = compile vs_3_0 V();\n"
                           "PixelShader = compile ps_3_0 P(); } }\n"));
    EXPECT_EQ(shot.Middle(), 0xFFFF0000u);
    EXPECT_THAT(View::Stage::Names("mesh"), Not(testing::Contains("flat.fx")));
    color("float4 Color() { return blue; }\n");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFFFF0000u);
    ASSERT_THAT(shot->Faults(), testing::SizeIs(1));
    EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("color.fxh(1): error"));
    color("float4 Color() { return float4(0, 0, 1, 1); }\n");
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF0000FFu);
    EXPECT_THAT(shot->Faults(), IsEmpty());
}

TEST_F(ViewTest, TheGamesOwnShadersChangeToo) {
    const std::string light = Vorn::TextFromFile("data/shaders/vornlight.fx");
    for (const char* folder : {"data", "data/shaders", "data/mesh"})
        mFolder.Folder(folder);
    std::filesystem::create_symlink("nowhere", mFolder / "data/shaders/basicshader.fx");
    mFolder.File("data/shaders/vornlight.fx", light);
    Shot shot(mFolder.File("data/mesh/thing.mesh", Vorn::TextFromFile(Game + "mesh/pearl.mesh")));
    const Pixels lit = shot.Take();
    mFolder.File("data/shaders/vornlight.fx", "technique");
    shot->CheckFiles();
    EXPECT_EQ(shot.Take(), lit);
    ASSERT_THAT(shot->Faults(), testing::SizeIs(1));
    EXPECT_THAT(shot->Faults().begin()->second, HasSubstr("vornlight.fx(1): error"));
    mFolder.File(
        "data/shaders/vornlight.fx",
        "float4 Green() : COLOR { return float4(0, 1, 0, 1); }\n" +
            std::regex_replace(light, std::regex("compile ps_3_0 \\w+"), "compile ps_3_0 Green"));
    shot->CheckFiles();
    EXPECT_EQ(shot.Middle(), 0xFF00FF00u);
    EXPECT_THAT(shot->Faults(), IsEmpty());
}

TEST_F(ViewTest, WhatIsWideFillsThePictureAndIsWhole) {
    Shot shot(Game + "mesh/wreck.mesh");
    for (const float yaw : {-90.0f, -60.0f, -130.0f}) {
        shot->Orbit().Set(yaw, 10);
        shot->FrameAll();
        const Pixels pixels = shot.Take();
        unsigned int left = Width, right = 0;
        for (unsigned int i = 0; i < Width * Height; ++i)
            if (pixels[i] != Background) {
                left = std::min(left, i % Width);
                right = std::max(right, i % Width);
            }
        EXPECT_GT(left, 0u) << yaw;
        EXPECT_LT(right, Width - 1) << yaw;
        EXPECT_GT(right - left, Width / 2) << yaw;
    }
}

TEST_F(ViewTest, TheCommandSavesPicturesAndNamesFaults) {
    const std::string game = std::filesystem::absolute(Game).string();
    const auto size = [this](const std::string& name) {
        const std::string png = Vorn::TextFromFile(mFolder / name);
        return png.substr(1, 3) + ' ' + std::to_string(static_cast<unsigned char>(png.at(19))) +
               'x' + std::to_string(static_cast<unsigned char>(png.at(23)));
    };
    for (const char* panel : {"", " --panel"}) {
        const Outcome good = Run("view " + game +
                                 "mesh/jelly.mesh --size 200x150 --time 0.3 "
                                 "--yaw 20 --show bones,grid --picture " +
                                 (*panel ? "with.png" : "without.png") + panel);
        EXPECT_EQ(good.status, 0) << good.error;
        EXPECT_THAT(good.out + good.error, IsEmpty());
    }
    EXPECT_EQ(size("with.png"), "PNG 200x150");
    EXPECT_NE(Vorn::TextFromFile(mFolder / "with.png"),
              Vorn::TextFromFile(mFolder / "without.png"));

    mFolder.File("torn.mesh", Vorn::TextFromFile(Game + "mesh/jelly.mesh").substr(0, 500));
    mFolder.File("bad.json", "{\"Texture\": }");
    mFolder.File("bad.fx", "technique T { pass { VertexShader = compile vs_3_0 None(); } }");
    mFolder.File("what.txt", "not of a game");
    const std::pair<const char*, const char*> faults[] = {{"none.mesh", "there is no such file"},
                                                          {"torn.mesh", "it ends at byte 500"},
                                                          {"bad.json", "Line 1, Column 13"},
                                                          {"bad.fx", "bad.fx(1): error"},
                                                          {"what.txt", "it is no model"}};
    for (const auto& [file, fault] : faults) {
        const Outcome bad = Run(std::string("view ") + file + " --picture out.png");
        EXPECT_EQ(bad.status, 1) << file;
        EXPECT_THAT(bad.error,
                    AllOf(HasSubstr(std::string("cannot show ") + file + ": "), HasSubstr(fault)));
        EXPECT_EQ(std::count(bad.error.begin(), bad.error.end(), '\n'), 1) << bad.error;
    }
    EXPECT_FALSE(std::filesystem::exists(mFolder / "out.png"));
    EXPECT_EQ(Run("view torn.mesh --size 10x10").status, 2);
    EXPECT_EQ(Run("view torn.mesh --show bone").status, 2);
}

} // namespace
