// SPDX-License-Identifier: MIT
#include "tests/support/engine_device.hpp"

#include <stdexcept>

namespace {

using Tests::PixelsOf;
using Tests::Printed;
using Tests::Tga;
using VornPlatform::CountLiveObjects;
using VornPlatform::ObjectName;

class Textures : public Tests::RecorderTest {
protected:
    Textures() {
        Open();
        mOwn = CountLiveObjects().textures;
    }
    /// Beside those of the device layer itself.
    int Alive() const { return CountLiveObjects().textures - mOwn; }

private:
    int mOwn = 0;
};

TEST_F(Textures, HoldTheirPictureUnderTheirFilesPath) {
    folder.File("data/img/a.tga", Tga(2, 2, {0xFF0000FF, 0xFF00FF00, 0xFFFF0000, 0x80402010}));
    EXPECT_EQ(Printed([&] { textures.Load("a.tga"); }), "");
    Vorn::Texture* const texture = textures.Get("a.tga");
    EXPECT_EQ(texture->mPath, "data/img/a.tga");
    EXPECT_THAT(PixelsOf(*texture->mTexture),
                testing::ElementsAre(0xFF0000FFu, 0xFF00FF00u, 0xFFFF0000u, 0x80402010u));
    // Loaded once.
    const std::string name = ObjectName(*texture->mTexture);
    IDirect3DTexture9** const slot = texture->mTexture;
    textures.Load("a.tga");
    EXPECT_EQ(textures.Get("a.tga"), texture);
    EXPECT_EQ(texture->mTexture, slot);
    EXPECT_EQ(ObjectName(*slot), name);
    EXPECT_EQ(Alive(), 1);
}

TEST_F(Textures, SayThatTheyAreRemoved) {
    folder.File("data/img/a.tga", Tga(0xFF000000));
    textures.Load("a.tga");
    textures.Load("none.tga");
    EXPECT_EQ(Printed([&] { textures.Unload("b.tga"); }), "");
    EXPECT_EQ(Printed([&] { textures.Unload("a.tga"); }), "Removed data/img/a.tga\n");
    EXPECT_EQ(Printed([&] { textures.Unload("a.tga"); }), "");
    EXPECT_EQ(Printed([&] { textures.Unload("none.tga"); }), "Removed data/img/none.tga\n");
    EXPECT_THROW(textures.Get("a.tga"), std::out_of_range);
    EXPECT_EQ(Alive(), 0);
}

TEST_F(Textures, KeepTheirSlotsThroughAResetAndAreReadAgain) {
    folder.File("data/img/a.tga", Tga(0xFF000011));
    folder.File("data/img/b.tga", Tga(0xFF000022));
    textures.Load("a.tga");
    textures.Load("b.tga");
    Vorn::Texture* const a = textures.Get("a.tga");
    IDirect3DTexture9** const slot = a->mTexture;
    const std::string before = ObjectName(*slot);
    for (int i = 0; i < 2; ++i) {
        textures.Release();
        EXPECT_EQ(Alive(), 0);
        EXPECT_EQ(*slot, nullptr);
    }
    folder.File("data/img/a.tga", Tga(0xFF000033));
    std::filesystem::remove("data/img/b.tga");
    textures.Reload();
    EXPECT_EQ(textures.Get("a.tga"), a);
    EXPECT_EQ(a->mTexture, slot);
    EXPECT_NE(ObjectName(*slot), before);
    EXPECT_THAT(PixelsOf(*slot), testing::ElementsAre(0xFF000033u));
    // What cannot be read is null, until it can.
    EXPECT_EQ(*textures.Get("b.tga")->mTexture, nullptr);
    folder.File("data/img/b.tga", Tga(0xFF000044));
    textures.Release();
    textures.Reload();
    EXPECT_THAT(PixelsOf(*textures.Get("b.tga")->mTexture), testing::ElementsAre(0xFF000044u));
    EXPECT_EQ(Alive(), 2);
    // Gone between the two.
    textures.Release();
    EXPECT_EQ(Printed([&] { textures.Unload("a.tga"); }), "Removed data/img/a.tga\n");
    textures.Reload();
    EXPECT_EQ(Alive(), 1);
}

TEST_F(Textures, ThatCannotBeLoadedAreNullAndStay) {
    folder.Folder("data/img/folder");
    const std::string whole = Tga(4, 4, Tests::Pixels(16, 0xFF123456));
    folder.File("data/img/empty");
    folder.File("data/img/text", "no picture");
    folder.File("data/img/head", whole.substr(0, 11));
    for (const char* name : {"none.tga", "folder", "empty", "text", "head"}) {
        EXPECT_NO_THROW(textures.Load(name)) << name;
        ASSERT_NE(textures.Get(name)->mTexture, nullptr) << name;
        EXPECT_EQ(*textures.Get(name)->mTexture, nullptr) << name;
    }
    textures.Release();
    textures.Reload();
    EXPECT_EQ(Alive(), 0);
}

} // namespace
