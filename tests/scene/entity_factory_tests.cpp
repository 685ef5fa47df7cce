// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

#include "vorn/core/file.hpp"

namespace {

using namespace SceneTests;

class Factory : public SceneTest {
protected:
    /// The error for a key without a pool, which must name the key and leave none behind.
    template <typename Act>
    void ExpectUnknown(const std::string& key, Act&& act) {
        SCOPED_TRACE("key " + key);
        const Log before = Keys();
        const std::string text = Raised<std::out_of_range>(act);
        EXPECT_NE(text.find(key), std::string::npos) << text;
        EXPECT_EQ(Keys(), before);
    }
};

TEST_F(Factory, LoadsEntityFilesThenVariantFilesByWhatFollowsTheFirstDot) {
    const TempDir dir;
    const char* const entities[] = {"ent", ".ent", "z.ent", "a.ent", "m .ent"};
    const char* const variants[] = {"var", ".var", "b.var", "A.var"};
    const char* const others[] = {"enemy.old.ent", "..ent",    ".hidden.ent", "a.b.var", "a.ENT",
                                  "a.ent2",        "a.en",     "entity",      "nodot",   "a.",
                                  "ent.txt",       "a.ent.",   "a.ent~",      ".",       "x.var ",
                                  "ent.",          "var.ent.", "a. ent"};
    for (const std::string name : entities)
        dir.Write(name, R"({"Type": "thing", "Name": ")" + name + "\"}");
    for (const std::string name : variants)
        dir.Write(name, R"({"Type": "thing", "Variant": ")" + name + "\"}");
    for (const std::string name : others) {
        if (name != ".")
            dir.Write(name, R"({"Type": "thing", "Name": "other"})");
    }
    std::filesystem::create_directory(dir.Path("folder.ent"));
    std::filesystem::create_directory(dir.Path("folder.var"));
    dir.Write("folder.ent/inner.ent", R"({"Type": "thing", "Name": "inner"})");

    // Each kind comes in the order of the listing.
    std::vector<std::string> listing;
    Vorn::FilesInDirectory((dir.Path() + "/*").c_str(), listing);
    std::vector<std::string> expected;
    for (const std::string& name : listing) {
        if (std::count(std::begin(entities), std::end(entities), name))
            expected.push_back(ReadAll(dir.Path(name)));
    }
    EXPECT_EQ(expected.size(), std::size(entities));
    for (const std::string& name : listing) {
        if (std::count(std::begin(variants), std::end(variants), name))
            expected.push_back(ReadAll(dir.Path(name)));
    }
    factory.LoadEntities(dir.Path().c_str());
    EXPECT_EQ(things.texts, expected);
    EXPECT_EQ(Keys(), (Log{".var", "A.var", "b.var", "thing", "var"}));
}

TEST_F(Factory, LoadsNothingFromADirectoryThatIsEmptyOrNotThere) {
    const TempDir dir;
    factory.LoadEntities(dir.Path().c_str());
    factory.LoadEntities(dir.Path("missing").c_str());
    EXPECT_EQ(Take(), Log());
    EXPECT_EQ(Keys(), (Log{"thing"}));

    // Variants alone are loaded against whatever pool is there.
    dir.Write("a.var", R"({"Type": "thing", "Variant": "red"})");
    factory.LoadEntities(dir.Path().c_str());
    EXPECT_EQ(Take(), (Log{"thing.LoadVariant red"}));
}

TEST_F(Factory, HandsThePoolTheWholeTextAndTheWishedSize) {
    const TempDir dir;
    std::string text = "// a comment\n  {\"Type\": \"thing\",\r\n \"Pool\": 7, \"Odd\": [1]}\n\n";
    factory.LoadEntity(dir.Write("a.ent", text).c_str());
    EXPECT_EQ(Take(), (Log{"thing.LoadMaster 7"}));
    EXPECT_EQ(things.texts.back(), text);

    const std::pair<const char*, const char*> sizes[] = {
        {"0", "0"}, {"4294967295", "4294967295"}, {"1.5", "1"}, {"true", "1"}, {"null", "0"}};
    for (const auto& [written, size] : sizes) {
        SCOPED_TRACE(written);
        text = R"({"Type": "thing", "Pool": )" + std::string(written) + "}";
        factory.LoadEntity(dir.Write("a.ent", text).c_str());
        EXPECT_EQ(Take(), (Log{"thing.LoadMaster " + std::string(size)}));
    }
    factory.LoadEntity(dir.Write("a.ent", R"({"Type": "thing"})").c_str());
    EXPECT_EQ(Take(), (Log{"thing.LoadMaster 0"}));

    things.texts.clear();
    for (const char* size : {"-1", "-0.5e9", "4294967296", "1e300", "\"7\"", "[]", "{}", "[7]"}) {
        SCOPED_TRACE(size);
        text = R"({"Type": "thing", "Pool": )" + std::string(size) + "}";
        const std::string error = Raised<std::runtime_error>(
            [&] { factory.LoadEntity(dir.Write("a.ent", text).c_str()); });
        EXPECT_TRUE(error.starts_with("Type is not convertible to ")) << error;
        EXPECT_NE(error.find("Pool"), std::string::npos) << error;
        // A variant's size is nobody's business.
        text = R"({"Type": "thing", "Variant": "red", "Pool": )" + std::string(size) + "}";
        EXPECT_NO_THROW(factory.LoadVariant(dir.Write("a.var", text).c_str()));
    }
    for (const char* type : {"[]", "{}", "[\"thing\"]"}) {
        SCOPED_TRACE(type);
        text = R"({"Variant": "red", "Type": )" + std::string(type) + "}";
        const std::string path = dir.Write("a.ent", text);
        EXPECT_THROW(factory.LoadEntity(path.c_str()), std::runtime_error);
        EXPECT_THROW(factory.LoadVariant(path.c_str()), std::runtime_error);
    }
    EXPECT_EQ(things.texts.size(), 8u);
    EXPECT_EQ(Keys(), (Log{"red", "thing"}));
}

TEST_F(Factory, PassesAnUnreadableTextToThePoolOfTheEmptyName) {
    const TempDir dir;
    for (const std::string text : {"", "no json", "[1, 2]", "17", "{}", "null"}) {
        SCOPED_TRACE(text);
        const std::string path = dir.Write("a.ent", text);
        EXPECT_THROW(factory.LoadEntity(path.c_str()), std::out_of_range);
        EXPECT_THROW(factory.LoadVariant(path.c_str()), std::out_of_range);
        EXPECT_EQ(Keys(), (Log{"thing"}));
    }
    LoggingPool nameless("");
    factory.Register("", &nameless);
    for (const std::string text : {"", "no json", "[1, 2]", "17", "{}", "null"}) {
        SCOPED_TRACE(text);
        factory.LoadEntity(dir.Write("a.ent", text).c_str());
        EXPECT_EQ(nameless.texts.back(), text);
        EXPECT_EQ(Take(), (Log{".LoadMaster 0"}));
    }
}

TEST_F(Factory, NamesAFileThatCannotBeOpened) {
    const TempDir dir;
    for (const std::string& path : {dir.Path("missing.ent"), dir.Path(), dir.Path() + "/x/y"}) {
        const std::string expected = "cannot open file: " + path;
        EXPECT_EQ(Raised<std::runtime_error>([&] { factory.LoadEntity(path.c_str()); }), expected);
        EXPECT_EQ(Raised<std::runtime_error>([&] { factory.LoadVariant(path.c_str()); }), expected);
    }
    EXPECT_EQ(Take(), Log());
    EXPECT_EQ(Keys(), (Log{"thing"}));
}

TEST_F(Factory, NamesAKeyWithoutAPoolAndKeepsNone) {
    const TempDir dir;
    const std::string path = dir.Write("a.ent", R"({"Type": "unicorn", "Variant": "pink"})");
    Vorn::Entity* stray = Make("stray");
    stray->DeserializeValue(Element("unicorn", "stray"), false);
    const auto expectUnknown = [&] {
        ExpectUnknown("unicorn", [&] { factory.FetchEntity("unicorn", "master"); });
        ExpectUnknown("unicorn", [&] { factory.FetchEntity("unicorn"); });
        ExpectUnknown("unicorn", [&] { factory.ReturnEntity(stray); });
        ExpectUnknown("unicorn", [&] { factory.LoadEntity(path.c_str()); });
        ExpectUnknown("unicorn", [&] { factory.LoadVariant(path.c_str()); });
    };
    expectUnknown();
    // A null pool is no pool, also where there was one before.
    factory.Register("unicorn", nullptr);
    expectUnknown();
    factory.Register("unicorn", &things);
    EXPECT_NO_THROW(factory.FetchEntity("unicorn"));
    factory.Register("unicorn", nullptr);
    expectUnknown();
}

TEST_F(Factory, NamesKeyAndVariantThatAPoolHasNothingFor) {
    things.handsOutNull = true;
    const std::string text =
        Raised<std::runtime_error>([&] { factory.FetchEntity("thing", "crimson"); });
    EXPECT_NE(text.find("thing"), std::string::npos) << text;
    EXPECT_NE(text.find("crimson"), std::string::npos) << text;
    const TempDir dir;
    const std::string path = dir.Write("a.var", R"({"Type": "thing", "Variant": "red"})");
    EXPECT_THROW(factory.LoadVariant(path.c_str()), std::runtime_error);
    EXPECT_EQ(Keys(), (Log{"thing"}));
}

TEST_F(Factory, FetchesAndReturnsByKey) {
    LoggingPool other("other");
    factory.Register("other", &other);
    Vorn::Entity* entity = factory.FetchEntity("thing", "red");
    EXPECT_EQ(entity, things.fetched.back());
    entity = factory.FetchEntity("other");
    EXPECT_EQ(entity, other.fetched.back());
    factory.ReturnEntity(entity);
    EXPECT_EQ(Take(), (Log{"thing.Fetch red", "other.Fetch other", "other.Return "}));

    // A second registration under a key replaces the first.
    factory.Register("thing", &other);
    factory.FetchEntity("thing", "red");
    EXPECT_EQ(Take(), (Log{"other.Fetch red"}));
    EXPECT_EQ(Keys(), (Log{"other", "thing"}));
}

TEST_F(Factory, MakesAVariantAnAliasOfItsTypesPool) {
    LoggingPool wolves("wolf");
    factory.Register("wolf", &wolves);
    const TempDir dir;
    const auto load = [&](const char* type, const char* variant) {
        const std::string text = R"({"Type": ")" + std::string(type) + R"(", "Variant": ")" +
                                 std::string(variant) + "\"}";
        factory.LoadVariant(dir.Write("a.var", text).c_str());
        Take();
    };
    load("thing", "red");
    factory.FetchEntity("red");
    Vorn::Scene scene;
    scene.CreateEntity("red", false);
    EXPECT_EQ(Take(), (Log{"thing.Fetch red", "thing.Fetch red"}));
    std::vector<std::string> list = {"kept"};
    factory.GetEntityList(list);
    EXPECT_EQ(list.front(), "kept");
    std::sort(list.begin() + 1, list.end());
    EXPECT_EQ(list, (Log{"kept", "red", "thing", "wolf"}));

    // The later file has the name.
    load("wolf", "red");
    factory.FetchEntity("red");
    EXPECT_EQ(Take(), (Log{"wolf.Fetch red"}));
    EXPECT_EQ(Keys(), (Log{"red", "thing", "wolf"}));

    // An alias is as good a type as any for the next file.
    load("red", "crimson");
    factory.FetchEntity("crimson");
    EXPECT_EQ(Take(), (Log{"wolf.Fetch crimson"}));

    // A variant named like a type takes its key over, the way back included.
    Vorn::Entity* thing = factory.FetchEntity("thing", "master");
    load("wolf", "thing");
    Take();
    factory.ReturnEntity(thing);
    EXPECT_EQ(Take(), (Log{"wolf.Return "}));
}

TEST_F(Factory, RegistersNoAliasWhenThePoolRaises) {
    const TempDir dir;
    Once("thing.LoadVariant red", [] { throw std::logic_error("no"); });
    Once("thing.LoadMaster 3", [] { throw std::logic_error("no"); });
    const std::string path =
        dir.Write("a.var", R"({"Type": "thing", "Variant": "red", "Pool": 3})");
    EXPECT_THROW(factory.LoadVariant(path.c_str()), std::logic_error);
    EXPECT_THROW(factory.LoadEntity(path.c_str()), std::logic_error);
    EXPECT_EQ(Keys(), (Log{"thing"}));
    factory.LoadVariant(path.c_str());
    EXPECT_EQ(Keys(), (Log{"red", "thing"}));
}

TEST_F(Factory, AFaultyFileLeavesWhatWasLoadedBeforeIt) {
    const TempDir dir;
    dir.Write("a.ent", R"({"Type": "thing"})");
    dir.Write("b.var", R"({"Type": "unicorn", "Variant": "pink"})");
    EXPECT_THROW(factory.LoadEntities(dir.Path().c_str()), std::out_of_range);
    EXPECT_EQ(Take(), (Log{"thing.LoadMaster 0"}));
    EXPECT_EQ(Keys(), (Log{"thing"}));
}

} // namespace
