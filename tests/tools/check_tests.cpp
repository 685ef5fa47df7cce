// SPDX-License-Identifier: MIT
#include "tests/tools/import_fixture.hpp"
#include "tools/check/checker.hpp"
#include "tools/check/finding.hpp"
#include "tools/check/folder.hpp"
#include "tools/check/game.hpp"
#include "tools/check/nearest.hpp"
#include "tools/check/pages.hpp"
#include "tools/check/schemas.hpp"

#include <gmock/gmock.h>
#include <valijson/adapters/jsoncpp_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include <set>

namespace {

using namespace Tests;
using testing::HasSubstr;

constexpr const char* Broken = "tests/tools/data/check";
const std::vector<std::string> Sound = {"samples/game", "samples/04-scene", "samples/06-frame",
                                        "worlds/meadow", "data"};

class CheckTest : public ImportFixture {
protected:
    Outcome Check(const std::string& arguments) const { return RunIn(".", "check " + arguments); }
};

// The report is what a person reads: look at the difference before taking it over.
TEST_F(CheckTest, TellsEachKindOfFaultInAFolderThatHoldsOneOfEach) {
    const Outcome told = Check(Broken);
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.out, Vorn::TextFromFile(std::string(Broken) + "/expected.txt"));
    for (const Check::Rule& rule : Check::Rules())
        if (std::string(rule.name) != "unreadable") { // root reads everything
            EXPECT_THAT(told.out, HasSubstr(std::string("[") + rule.name + "]\n"));
        }
}

// It goes between the listing and the reading: root may read everything that is there.
TEST_F(CheckTest, TellsAFileThatCannotBeRead) {
    for (const char* name : {"data/foe.ent", "data/small.fnt"}) {
        mFolder.Folder("data");
        mFolder.File(name, "{}");
        const Check::Folder folder = Check::ReadFolder(mFolder.Path(), "");
        std::filesystem::remove(mFolder / name);
        const std::vector<Check::Finding> found = Check::CheckFolder(folder, nullptr);
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].rule, "unreadable");
        EXPECT_EQ(found[0].place.file, name);
        EXPECT_THAT(found[0].message, HasSubstr("cannot open file: "));
    }
}

TEST_F(CheckTest, HasNothingToTellOfWhatComesWithTheEngine) {
    for (const std::string& folder : Sound) {
        const Outcome told = Check(folder);
        EXPECT_EQ(told.status, 0) << folder;
        EXPECT_EQ(told.out + told.error, "") << folder;
    }
}

TEST_F(CheckTest, WritesSarif) {
    const Outcome told = Check(std::string(Broken) + " --sarif '" + mFolder / "found.sarif'");
    const Json::Value sarif = Vorn::ParseJson(Vorn::TextFromFile(mFolder / "found.sarif"));
    EXPECT_EQ(sarif["version"], "2.1.0");
    const Json::Value& run = sarif["runs"][0];
    std::set<std::string> rules;
    for (const Json::Value& rule : run["tool"]["driver"]["rules"])
        rules.insert(rule["id"].asString());
    EXPECT_GT(run["results"].size(), 20u);
    for (const Json::Value& result : run["results"]) {
        EXPECT_EQ(rules.count(result["ruleId"].asString()), 1u);
        // The same file, line and column as in the report.
        const Json::Value& place = result["locations"][0]["physicalLocation"];
        std::string head = place["artifactLocation"]["uri"].asString();
        if (place.isMember("region"))
            head += ":" + place["region"]["startLine"].asString() + ":" +
                    place["region"]["startColumn"].asString();
        EXPECT_THAT(told.out, HasSubstr(head + ": " + result["level"].asString() + ": "));
    }
}

TEST_F(CheckTest, WrongArgumentsAreTold) {
    EXPECT_EQ(Check("").status, 2);
    EXPECT_EQ(Check("none").status, 2);
    EXPECT_EQ(RunIn(".", "schema").status, 2);
    EXPECT_EQ(Check(std::string(Broken) + " --sarif none/found.sarif").status, 1);
}

TEST(NearestTest, FindsWhatWasMeant) {
    const std::vector<std::string> keys = {"Mass", "Mask", "ScaleFactor", "Type", "X"};
    EXPECT_EQ(Check::Nearest("mass", keys), "Mass");
    EXPECT_EQ(Check::Nearest("Msak", keys), "Mask");
    EXPECT_EQ(Check::Nearest("ScalFacotr", keys), "ScaleFactor");
    EXPECT_EQ(Check::Nearest("x", keys), "X");
    EXPECT_EQ(Check::Nearest("Y", keys), "");
    EXPECT_EQ(Check::Nearest("Gravity", keys), "");
    EXPECT_EQ(Check::Nearest(std::string(1000, 'M'), keys), "");
}

// Each page has the tables that `vorn schema --pages docs` writes.
TEST(PagesTest, AreUpToDate) {
    const Check::Table table = Check::EngineTable();
    std::size_t tables = 0;
    for (const auto& entry : std::filesystem::directory_iterator("docs")) {
        if (entry.path().extension() != ".md")
            continue;
        const std::string page = Vorn::TextFromFile(entry.path().string());
        EXPECT_EQ(Check::UpdatePage(page, table), page) << entry.path();
        tables += page.find("<!-- keys: ") != std::string::npos ? 1u : 0u;
    }
    EXPECT_EQ(tables, 9u) << "formats have a page each";
    EXPECT_THROW(Check::UpdatePage("<!-- keys: None -->\n<!-- end -->\n", table),
                 std::runtime_error);
}

class SchemaTest : public ImportFixture {
protected:
    /// What a validator that is not ours says of a file; empty for one without a schema.
    static std::optional<bool> IsValid(const Check::Game& game, const Check::DataFile& file) {
        static const std::map<Check::Format, const char*> names = {
            {Check::Format::Entity, "entity"},      {Check::Format::Variant, "variant"},
            {Check::Format::Scene, "scene"},        {Check::Format::PhysicsInfo, "physics_info"},
            {Check::Format::Pack, "resource_pack"}, {Check::Format::Material, "material"},
            {Check::Format::Trigger, "trigger"}};
        const auto name = names.find(file.format);
        if (name == names.end() || !file.json->IsWhole())
            return std::nullopt;
        const Json::Value text = Vorn::ParseJson(
            Check::Schemas(game.Keys()).at(std::string(name->second) + ".schema.json"));
        valijson::Schema schema;
        valijson::SchemaParser().populateSchema(valijson::adapters::JsonCppAdapter(text), schema);
        return valijson::Validator().validate(
            schema, valijson::adapters::JsonCppAdapter(file.json->Root()), nullptr);
    }
    static Check::Game Load(const std::string& folder) {
        Check::Findings ignored;
        return {Check::ReadFolder(folder, ""), Check::EngineTable(), ignored};
    }
};

TEST_F(SchemaTest, FitsWhatComesWithTheEngine) {
    std::size_t files = 0;
    for (const std::string& folder : Sound) {
        const Check::Game game = Load(folder);
        for (const Check::DataFile& file : game.Data())
            if (const auto valid = IsValid(game, file)) {
                EXPECT_TRUE(*valid) << folder << ": " << file.name;
                ++files;
            }
    }
    EXPECT_GT(files, 80u);
}

TEST_F(SchemaTest, RefusesWhatIsAMatterOfForm) {
    const Check::Game game = Load(Broken);
    std::vector<std::string> refused;
    for (const Check::DataFile& file : game.Data())
        if (const auto valid = IsValid(game, file); valid && !*valid)
            refused.push_back(file.name.substr(5));
    EXPECT_THAT(refused, testing::UnorderedElementsAre(
                             "entity/big.var", "entity/foe.ent", "entity/nameless.var",
                             "entity/typeless.ent", "level.scene", "mat/bare.json", "mat/wood.json",
                             "pack/other.json", "trigger/wave.json"));
}

TEST_F(SchemaTest, IsWrittenWithTheKeysOfAGame) {
    const std::string root = std::filesystem::current_path().string();
    EXPECT_EQ(Run("schema out --game '" + root + "/samples/game'").status, 0);
    const Json::Value entity =
        Vorn::ParseJson(Vorn::TextFromFile(mFolder / "out/entity.schema.json"));
    EXPECT_EQ(entity["properties"]["Health"]["type"], "integer");
    EXPECT_EQ(entity["definitions"]["PhysicsCmpt"]["properties"]["Mass"]["default"], 1);
    EXPECT_THAT(entity["properties"]["Pool"]["description"].asString(), HasSubstr("ahead"));
    EXPECT_TRUE(std::filesystem::exists(mFolder / "out/trigger.schema.json"));
}

} // namespace
