// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

namespace {

using namespace SceneTests;

class Factory : public SceneTest {
protected:
    void LoadEntity(const std::string& text) { factory.LoadEntity(Write("a.ent", text).c_str()); }
    void LoadVariant(const std::string& text) { factory.LoadVariant(Write("a.var", text).c_str()); }
};

TEST_F(Factory, LoadsEntityFilesThenVariantFilesByWhatFollowsTheFirstDot) {
    factory.LoadEntities((folder / "none").c_str());
    for (const std::string name :
         {"ent", ".ent", "z.ent", "a.ent", "enemy.old.ent", "..ent", ".hidden.ent", "a.b.var",
          "a.ENT", "a.ent2", "entity", "a.", "a.ent.", "x.var ", "var", "b.var", "A.var"})
        Write(name, R"({"Type": "thing", "Variant": ")" + name + "\"}");
    std::filesystem::create_directory(folder / "folder.ent");

    // Each kind comes in the order of the listing.
    std::vector<std::string> listing;
    Vorn::FilesInDirectory((folder / "*").c_str(), listing);
    std::vector<std::string> expected;
    for (const std::string kind : {" ent .ent z.ent a.ent ", " var b.var A.var "})
        for (const std::string& name : listing)
            if (kind.find(" " + name + " ") != std::string::npos)
                expected.push_back(Vorn::TextFromFile(folder / name));
    factory.LoadEntities(folder.c_str());
    EXPECT_EQ(expected.size(), 7u);
    EXPECT_EQ(things.texts, expected); // the whole texts
    EXPECT_THAT(Keys(), UnorderedElementsAre("A.var", "b.var", "thing", "var"));
}

TEST_F(Factory, HandsOnTheWishedSizeAndRaisesForWhatIsNone) {
    LoadEntity(R"({"Type": "thing"})");
    LoadEntity(R"({"Type": "thing", "Pool": 4294967295})");
    LoadEntity(R"({"Type": "thing", "Pool": 1.5})");
    EXPECT_EQ(recorder.Take(), "thing.LoadMaster:0 thing.LoadMaster:4294967295 thing.LoadMaster:1");
    for (const std::string wrong : {"-1", "4294967296", "\"7\"", "[]"}) {
        const std::string text = R"({"Type": "thing", "Variant": "red", "Pool": )" + wrong + "}";
        EXPECT_THAT([&] { LoadEntity(text); },
                    ThrowsMessage<std::runtime_error>("Type is not convertible to unsigned int: "
                                                      "\"Pool\" in " +
                                                      (folder / "a.ent").string()));
        LoadVariant(text); // whose size is nobody's business
    }
    EXPECT_THROW(factory.LoadEntity((folder / "missing").c_str()), std::runtime_error);
    EXPECT_THROW(factory.LoadVariant((folder / "missing").c_str()), std::runtime_error);
}

TEST_F(Factory, NamesAKeyWithoutAPoolAndKeepsNone) {
    const std::string text = R"({"Type": "unicorn", "Variant": "pink"})";
    LoggingPool unicorns("unicorn");
    const auto expectUnknown = [&] {
        const auto keys = Keys();
        for (const std::function<void()>& act : std::vector<std::function<void()>>{
                 [&] { factory.FetchEntity("unicorn", "master"); },
                 [&] { factory.FetchEntity("unicorn"); }, [&] { LoadEntity(text); },
                 [&] { factory.ReturnEntity(unicorns.Make("")); }, [&] { LoadVariant(text); }})
            EXPECT_THAT(act, ThrowsMessage<std::out_of_range>(HasSubstr("unicorn")));
        EXPECT_EQ(Keys(), keys);
    };
    expectUnknown();
    factory.Register("unicorn", nullptr); // a null pool is no pool
    expectUnknown();
    EXPECT_THAT([&] { LoadEntity("no json"); }, // under the empty name
                ThrowsMessage<std::out_of_range>(HasSubstr((folder / "a.ent").string())));
    things.empty = true;
    EXPECT_THAT([&] { factory.FetchEntity("thing", "crimson"); },
                ThrowsMessage<std::runtime_error>(
                    testing::AllOf(HasSubstr("thing"), HasSubstr("crimson"))));
    EXPECT_THROW(LoadVariant(R"({"Type": "thing", "Variant": "red"})"), std::runtime_error);
    EXPECT_THAT(Keys(), UnorderedElementsAre("thing", "unicorn"));
}

TEST_F(Factory, MakesAVariantAnAliasAndLetsTheLaterOfAKeyHaveIt) {
    LoggingPool wolves("wolf");
    factory.Register("wolf", &wolves);
    LoadVariant(R"({"Type": "thing", "Variant": "red"})");
    factory.FetchEntity("red");
    EXPECT_EQ(recorder.Take(), "thing.Fetch:red thing.Fetch:red");
    std::vector<std::string> list = {"kept"};
    factory.GetEntityList(list);
    EXPECT_THAT(list, UnorderedElementsAre("kept", "red", "thing", "wolf"));

    LoadVariant(R"({"Type": "wolf", "Variant": "red"})");
    LoadVariant(R"({"Type": "red", "Variant": "crimson"})"); // an alias is as good as a type
    EXPECT_EQ(recorder.Take(), "wolf.Fetch:red wolf.Fetch:crimson");
    EXPECT_THAT(Keys(), UnorderedElementsAre("crimson", "red", "thing", "wolf"));

    // A variant named like a type takes its key over, the way back included.
    LoadVariant(R"({"Type": "wolf", "Variant": "thing"})");
    factory.ReturnEntity(things.Make("a"));
    factory.Register("thing", &things);
    factory.ReturnEntity(things.Make("b"));
    EXPECT_EQ(recorder.Take(), "wolf.Fetch:thing wolf.Return:a thing.Return:b");
}

} // namespace
