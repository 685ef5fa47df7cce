// SPDX-License-Identifier: MIT
#include "tests/support/rounds.hpp"
#include "tests/tools/import_fixture.hpp"
#include "tests/tools/strip.hpp"

#include "tools/import/worker.hpp"

#include <gmock/gmock.h>

#include <csignal>

namespace Tests {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string data(const std::string& name) {
    return Vorn::TextFromFile("tests/tools/data/" + name);
}

/// A picture of one dot.
const std::string gif("GIF89a\1\0\1\0\x80\0\0\xFF\0\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);

class FileImport : public ImportFixture {
protected:
    void CopyTripod() const {
        mFolder.File("tripod.obj", data("tripod.obj"));
        mFolder.File("tripod.mtl", data("tripod.mtl"));
    }
};

TEST_F(FileImport, BringsAxesAndUnitsOfEveryFormatToTheEngines) {
    // The same body, 1 to the right, 3 up and 2 away, in each format's own axes and units.
    mFolder.File("tripod.fbx", data("tripod.fbx"));
    mFolder.File("tripod.dae", data("tripod.dae"));
    mFolder.File("tripod.obj", "v 1 0 0\nv 0 0 -2\nv 0 3 0\nv 0 0 0\n"
                               "f 1 2 3\nf 1 4 2\nf 2 4 3\nf 3 4 1\n");
    for (const std::string name : {"tripod.fbx", "tripod.dae", "tripod.obj"}) {
        SCOPED_TRACE(name);
        const Outcome outcome = Import("--name body --force " + name);
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        const ReadModel model = Model("body");
        EXPECT_FALSE(model.skinned);
        EXPECT_TRUE(FacesItsNormals(model));
        EXPECT_EQ(model.indices.size(), 12u);
        Vorn::Vector3 far;
        for (const ReadVertex& vertex : model.vertices) {
            far.x = std::max(far.x, vertex.position.x);
            far.y = std::max(far.y, vertex.position.y);
            far.z = std::max(far.z, vertex.position.z);
        }
        EXPECT_LT((far - Vorn::Vector3(1, 3, 2)).Length(), 1e-5f);
        float volume = 0;
        for (std::size_t i = 0; i < model.indices.size(); i += 3) {
            const auto corner = [&](std::size_t c) {
                return model.vertices.at(model.indices[i + c]).position;
            };
            volume += corner(0).DotProduct(corner(1).CrossProduct(corner(2))) / 6;
        }
        EXPECT_NEAR(volume, 1, 1e-5) << "clockwise from outside";
    }
}

TEST_F(FileImport, ScalesWhatItIsAskedTo) {
    mFolder.File("tripod.dae", data("tripod.dae"));
    ASSERT_EQ(Import("tripod.dae --scale 2.5").status, 0);
    float up = 0;
    for (const ReadVertex& vertex : Model("tripod").vertices)
        up = std::max(up, vertex.position.y);
    EXPECT_NEAR(up, 7.5, 1e-5);
}

TEST_F(FileImport, MakesAModelOfEachMaterialAndAPackOfAll) {
    CopyTripod();
    mFolder.Folder("textures");
    mFolder.File("textures/skin.gif", gif);
    const Outcome outcome = Import("tripod.obj");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(Results(),
                ElementsAre("data", "data/img", "data/img/skin.png", "data/img/untextured.tga",
                            "data/mat", "data/mat/tripod_eyes.json", "data/mat/tripod_skin.json",
                            "data/mesh", "data/mesh/tripod_eyes.mesh", "data/mesh/tripod_skin.mesh",
                            "data/pack", "data/pack/tripod.json"));

    const Json::Value pack = Json("pack/tripod.json");
    ASSERT_EQ(pack["Mesh"].size(), 2u);
    EXPECT_EQ(pack["Texture"].size(), 2u);
    EXPECT_EQ(pack["Material"].size(), 2u);
    EXPECT_TRUE(pack["Audio"].isArray());
    for (const Json::Value& name : pack["Material"]) {
        const Json::Value material = Json("mat/" + name.asString());
        EXPECT_EQ(std::count(pack["Texture"].begin(), pack["Texture"].end(), material["Texture"]),
                  1)
            << "a material's texture must be loaded with it";
    }

    const Json::Value skin = Json("mat/tripod_skin.json");
    EXPECT_EQ(skin["Texture"].asString(), "skin.png");
    EXPECT_TRUE(skin["Transparency"].asBool());
    EXPECT_TRUE(skin["Lighting"].asBool());
    EXPECT_EQ(skin["Diffuse"], Array({0.5, 0.25, 1, 0.5}));
    EXPECT_EQ(skin["Specular"][0].asDouble(), 0.125);
    EXPECT_FALSE(Json("mat/tripod_eyes.json")["Transparency"].asBool());
    EXPECT_THAT(Result("img/skin.png"), StartsWith("\x89PNG"));

    // Its texture coordinates count from the bottom, the engine's from the top.
    for (const ReadVertex& vertex : Model("tripod_skin").vertices) {
        if (vertex.position.x > 0) {
            EXPECT_EQ(vertex.v, 1);
        }
        if (vertex.position.y > 0) {
            EXPECT_EQ(vertex.v, 0);
        }
    }

    // The lost texture, where it was looked for, and what else was left.
    EXPECT_THAT(outcome.out,
                AllOf(HasSubstr("no texture \"art/lost.png\""), HasSubstr("\n      art/lost.png"),
                      HasSubstr("\n      textures/lost.png"), HasSubstr("rewritten as PNG"),
                      HasSubstr("its textures for")));
    EXPECT_EQ(Result("img/untextured.tga").size(), 18u + 4 * 4 * 3);
}

// Names of other days and other letters: a pack is JSON, and can name nothing but UTF-8.
TEST_F(FileImport, PackNamesFilesThatAreThere) {
    mFolder.File("tripod.obj", "mtllib tripod.mtl\nv 1 0 0\nv 0 0 -2\nv 0 3 0\n"
                               "usemtl gr\xfcn\nf 1 2 3\nusemtl bl\xc3\xa4u\nf 1 3 2\n");
    mFolder.File("tripod.mtl", "newmtl gr\xfcn\nmap_Kd skin..tga\nnewmtl bl\xc3\xa4u\n");
    mFolder.File("skin..tga", std::string("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0\x18\0abc", 21));
    const Outcome outcome = Import("tripod.obj");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const Json::Value pack = Json("pack/tripod.json");
    const std::vector<std::string> results = Results();
    for (const auto& [list, folder] :
         {std::pair("Mesh", "mesh"), {"Texture", "img"}, {"Material", "mat"}}) {
        EXPECT_EQ(pack[list].size(), 2u);
        for (const Json::Value& name : pack[list])
            EXPECT_THAT(results, Contains(std::string("data/") + folder + '/' + name.asString()));
    }
}

TEST_F(FileImport, WritesTexturesOutAsTheSourceHoldsThem) {
    Json::Value root = Vorn::ParseJson(Strip().Text());
    CopyTripod();
    mFolder.File("Skin.gif", gif);
    ASSERT_EQ(Import("tripod.obj").status, 0);
    const std::string png = Result("img/Skin.png");
    root["images"][0]["uri"] = "data:image/png;base64," + Base64(png);
    root["textures"][0]["source"] = 0;
    root["materials"][0]["name"] = "cloth";
    root["materials"][0]["pbrMetallicRoughness"]["baseColorTexture"]["index"] = 0;
    root["meshes"][0]["primitives"][0]["material"] = 0;
    mFolder.File("dressed.gltf", Vorn::WriteJson(root));
    const Outcome outcome = Import("dressed.gltf");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    const std::string name = Json("mat/dressed.json")["Texture"].asString();
    EXPECT_EQ(Result("img/" + name), png);
}

TEST_F(FileImport, ReplacesNothingThatDiffersUnlessItIsTold) {
    mFolder.File("tripod.dae", data("tripod.dae"));
    ASSERT_EQ(Import("tripod.dae").status, 0);
    ASSERT_EQ(Import("tripod.dae").status, 0) << "the same again";
    const std::string mine = "{\"Texture\": \"mine.png\"}";
    mFolder.File("game/data/mat/tripod.json", mine);
    const std::string before = Result("mesh/tripod.mesh");

    const Outcome refused = Import("tripod.dae --scale 2");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.error, AllOf(HasSubstr("mat/tripod.json"), HasSubstr("--force")));
    EXPECT_EQ(Result("mat/tripod.json"), mine);
    EXPECT_EQ(Result("mesh/tripod.mesh"), before);

    EXPECT_EQ(Import("tripod.dae --scale 2 --force").status, 0);
    EXPECT_NE(Result("mat/tripod.json"), mine);
    EXPECT_NE(Result("mesh/tripod.mesh"), before);
}

TEST_F(FileImport, ListsWhatAFileHolds) {
    mFolder.File("strip.gltf", Strip().Text());
    const Outcome outcome = Import("--list strip.gltf");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("4 triangles, 2 bones"), HasSubstr("\"hip\""),
                                   HasSubstr("0: \"walk\", 1.500 s, 2 tracks"),
                                   HasSubstr("1: \"nod\", 1.000 s, 1 tracks")));
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(FileImport, AnswersWrongArgumentsWithHelpAndStatusTwo) {
    mFolder.File("strip.gltf", Strip().Text());
    for (const char* arguments :
         {"", "export", "import", "import strip.gltf --scale none", "import strip.gltf --scale 0",
          "import strip.gltf --rate 0", "import strip.gltf --name ../up", "import a b",
          "import strip.gltf --colour red"}) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.error, AllOf(StartsWith("vorn: "), HasSubstr("Usage: vorn")));
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_THAT(Run("--version").out, StartsWith("vorn "));
    EXPECT_THAT(Run("import --help").out, HasSubstr("--animation"));
}

TEST_F(FileImport, SaysWhyAFileCannotBeRead) {
    mFolder.Folder("folder.obj");
    mFolder.File("empty.obj");
    mFolder.File("points.obj", "v 0 0 0\nv 1 0 0\nl 1 2\n");
    mFolder.File("story.txt", "Once upon a time");
    for (const char* name : {"nothing.obj", "folder.obj", "empty.obj", "points.obj", "story.txt"}) {
        SCOPED_TRACE(name);
        const Outcome outcome = Import(name);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.error, StartsWith(std::string("vorn: cannot read ") + name + ": "));
    }
    EXPECT_THAT(Results(), IsEmpty());
}

TEST_F(FileImport, BearsBrokenFilesAndLeavesNothingHalfWritten) {
    const std::pair<std::string, std::string> sources[] = {{"strip.gltf", Strip().Text()},
                                                           {"tripod.fbx", data("tripod.fbx")},
                                                           {"tripod.dae", data("tripod.dae")},
                                                           {"tripod.obj", data("tripod.obj")}};
    const auto check = [&](const std::string& name, const std::string& bytes) {
        mFolder.File(name, bytes);
        const Outcome outcome = Import(name);
        ASSERT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.error;
        const std::vector<std::string> results = Results();
        if (outcome.status == 1) {
            EXPECT_THAT(outcome.error, StartsWith("vorn: cannot read "));
            EXPECT_THAT(results, IsEmpty());
        }
        for (const std::string& result : results) {
            EXPECT_FALSE(result.ends_with(".part")) << result;
            if (result.ends_with(".mesh")) {
                EXPECT_NO_THROW(Model(std::filesystem::path(result).stem().string()));
            }
        }
        std::filesystem::remove_all(mFolder.Path() / "game");
    };
    for (const auto& [name, bytes] : sources) {
        constexpr std::size_t cuts = 5;
        for (std::size_t i = 0; i < cuts; ++i) {
            SCOPED_TRACE(name + " cut, " + std::to_string(i));
            check(name, bytes.substr(0, bytes.size() * i / cuts));
        }
        std::uint32_t chance = 1;
        for (unsigned int i = 0; i < Tests::Rounds(8); ++i) {
            SCOPED_TRACE(name + " changed, " + std::to_string(i));
            std::string changed = bytes;
            for (unsigned int flips = 0; flips <= i / 3; ++flips) {
                chance = chance * 1664525 + 1013904223;
                changed[chance % changed.size()] ^= static_cast<char>(1 << (chance >> 29));
            }
            check(name, changed);
        }
    }
}

TEST(Worker, TellsHowItEnded) {
    const auto run = [](const std::function<void(Import::Channel&)>& work) {
        Import::Options options;
        options.seconds = 1;
        return Import::RunWorker(options, work, [](const std::string&) {});
    };
    EXPECT_EQ(run([](Import::Channel&) { std::raise(SIGKILL); }).error,
              "the importer crashed (signal 9)");
    EXPECT_EQ(run([](Import::Channel& c) {
                  c.File({"data/half", "whole"});
                  _exit(3);
              }).error,
              "the importer broke off (status 3)");
    EXPECT_EQ(run([](Import::Channel&) { throw std::runtime_error("it is odd"); }).error,
              "it is odd");
    EXPECT_EQ(run([](Import::Channel&) {
                  for (volatile bool busy = true; busy;) {
                  }
              }).error,
              "it takes more than 1 seconds");

    const std::string large(3'000'000, '\0');
    const Import::WorkerResult whole = run([&](Import::Channel& c) {
        c.Report("all ");
        c.File({"data/zeros", large});
        c.Report("well");
    });
    EXPECT_EQ(whole.error, "");
    EXPECT_EQ(whole.report, "all well");
    ASSERT_EQ(whole.files.size(), 1u);
    EXPECT_EQ(whole.files[0].path, "data/zeros");
    EXPECT_EQ(whole.files[0].bytes, large);
}

} // namespace
} // namespace Tests
