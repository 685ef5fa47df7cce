// SPDX-License-Identifier: MIT
//
// What is flat: objects of the host, particles, the pass that lays the targets over each other, and
// text that is thrown away. First by their calls, in order and with all values.
#include "tests/render/shader_files.hpp"

#include "tests/support/picture.hpp"

#include <cmath>
#include <memory>
#include <stdexcept>

namespace {

using RenderTests::Calls;
using RenderTests::Elements;
using RenderTests::KnownShaders;
using RenderTests::Only;
using RenderTests::SetFrame;
using RenderTests::WriteShaders;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;
using Tests::operator+;
using Tests::Texts;
using Vorn::EmitterCmpt;
using Vorn::Entity;
using Vorn::Matrix4;
using Vorn::Point2;
using Vorn::Vector3;
using Vorn::Vorn2DObj;
using VornPlatform::ObjectName;

const Texts ParticleStates = {"SetRenderState 27 1", "SetRenderState 7 1", "SetRenderState 14 0"};

/// Gives off particles one by one, each where and as large as it is told.
class Source : public EmitterCmpt {
public:
    Source(const char* texture, int size) : EmitterCmpt(&mEntity) {
        Json::Value value;
        value["TexturePath"] = texture, value["Size"] = size, value["Particles_Per_Emit"] = 1;
        value["EmitterType"] = "Smoke"; // at the entity's place
        DeserializeValue(value, true);
        Conform(*this);
        Init();
        Vorn::EmitterSystem::Instance()->Register(this);
    }
    void Spawn(const Vector3& place, const Vector3& scale, float life = 9) {
        mEntity.Position(place);
        mScale0 = mScale1 = scale;
        mParticleLife0 = mParticleLife1 = life;
        mColor0 = mColor1 = Vorn3DColorSigned(0, 9, 9, 9); // takes no part
        Emit(1);
    }
    void Forget() { mTexture = nullptr; }

private:
    Entity mEntity;
};

class Flat : public Tests::RecorderTest {
protected:
    Flat() {
        WriteShaders(KnownShaders(true));
        for (const char* name : {"t", "u", "WhiteParticle.dds"})
            folder.File(std::string("data/img/") + name, Tests::Tga(0xFF123456));
        Open();
        textures.Load("t"), textures.Load("u");
        emitters.Init();
    }
    ~Flat() override { system.EmitterList(nullptr); }

    IDirect3DTexture9* Image(const char* name) { return *textures.Get(name)->mTexture; }
    /// As the effect has to get it.
    static D3DXMATRIX World(const Vector3& place, const Vector3& scale) {
        const float rows[] = {scale.x, 0, 0,       0, 0,       scale.y, 0,       0,
                              0,       0, scale.z, 0, place.x, place.y, place.z, 1};
        return D3DXMATRIX(rows);
    }
    Texts Quad(const Vector3& place, const Vector3& scale, IDirect3DTexture9* texture) {
        return Calls([&] { graphic.DrawTwoD(World(place, scale), texture); });
    }
    Texts Draw(Vorn2DObj& object, float alpha = 1, bool modulate = false) {
        return Calls([&] { system.Render2DObj(&object, alpha, modulate); });
    }
    Texts Particles() {
        return Calls([&] { system.RenderParticle(); });
    }
    Texts Glow() {
        return Calls([&] { system.RenderParticleGlowOverLay(); });
    }
    static std::vector<float> Numbers(const std::string& text) {
        std::istringstream in(text);
        return {std::istream_iterator<float>(in), {}};
    }
    static std::string One(const Texts& calls, const std::string& name) {
        const Texts some = Only(calls, name);
        EXPECT_EQ(some.size(), 1u) << name;
        return some.empty() ? "" : some[0];
    }
    Texts Distort(const Point2& center = Point2(), bool distortion = false) {
        return Calls([&] { graphic.DistortionEffect(center, distortion); });
    }
    /// The two times after a call in a frame of `seconds`.
    std::string Times(double seconds, bool distortion = false) {
        SetFrame(seconds);
        const Texts calls = Distort(Point2(), distortion);
        return One(calls, "SetFloat Time") + ' ' + One(calls, "SetFloat TargetTime");
    }

    Vorn::Graphics2DSystem& system = *Vorn::Graphics2DSystem::Instance();
    Vorn::EmitterSystem& emitters = *Vorn::EmitterSystem::Instance();
};

TEST_F(Flat, AnObjectIsTurnedAboutItsCentreAndHasNoThickness) {
    Vorn2DObj object;
    object.mPosition = Vector3(10, 20, 5);
    object.mWidth = 4, object.mHeight = 2;
    object.mTexture = textures.Get("t");
    struct Row {
        float angle;
        float corners[8];
    };
    for (const Row& row : {Row{0, {8, 19, 12, 19, 12, 21, 8, 21}},
                           Row{std::acos(0.0f), {11, 18, 11, 22, 9, 22, 9, 18}}}) {
        object.mAngle = row.angle;
        const std::vector<float> m = Numbers(One(Draw(object), "SetMatrix worldMatrix"));
        ASSERT_EQ(m.size(), 16u);
        const float quad[] = {-0.5f, -0.5f, 0.5f, -0.5f, 0.5f, 0.5f, -0.5f, 0.5f};
        for (std::size_t i = 0; i < 8; i += 2)
            for (std::size_t axis = 0; axis < 2; ++axis)
                EXPECT_NEAR(quad[i] * m[axis] + quad[i + 1] * m[4 + axis] + m[12 + axis],
                            row.corners[i + axis], 1e-5)
                    << row.angle << ' ' << i;
        EXPECT_THAT(std::vector<float>(m.begin() + 8, m.end()),
                    ElementsAre(0, 0, 0, 0, 10, 20, 5, 1));
    }
}

TEST_F(Flat, AnObjectGoesThroughTheQuadPathThatIsAskedForAndAnInvisibleOneThroughNone) {
    Vorn2DObj object;
    object.mPosition = Vector3(1, 2, 3);
    object.mWidth = 7, object.mHeight = -8;
    for (Vorn::Texture* texture : {textures.Get("t"), static_cast<Vorn::Texture*>(nullptr)}) {
        object.mTexture = texture;
        IDirect3DTexture9* image = texture ? Image("t") : nullptr; // white
        const D3DXMATRIX world = World(object.mPosition, Vector3(7, -8, 0));
        const Texts plain = Quad(object.mPosition, Vector3(7, -8, 0), image);
        EXPECT_THAT(Draw(object, 0.5f, false), ElementsAreArray(plain));
        EXPECT_THAT(Draw(object, 0.25f, true), ElementsAreArray(Calls([&] {
                        graphic.DrawTwoDModulate(world, image, 0.25f);
                    })));
    }
    object.mVisible = false;
    EXPECT_THAT(Draw(object) + Draw(object, 1, true), IsEmpty());
    EXPECT_THAT(Calls([&] { system.Render2DObj(nullptr, 1, true); }), IsEmpty());
}

TEST_F(Flat, ACopyLeavesOutWhatIsTheHostsAndAnAssignmentTakesAll) {
    const auto text = [](const Vorn2DObj& o) {
        const auto matrix = [](const Matrix4& m) { return Tests::Text({m.m, m.m + 16}); };
        return Tests::Text({o.mPosition.x, o.mPosition.y, o.mPosition.z, o.mAngle, o.mWidth,
                            o.mHeight, static_cast<float>(o.mVisible)}) +
               (o.mTexture ? " texture " : " none ") + std::to_string(o.mUserData[0]) + ' ' +
               std::to_string(o.mUserData[3]) + ' ' + std::to_string(o.mUserFlag) + ' ' +
               matrix(o.mUserMatrix0) + ' ' + matrix(o.mUserMatrix1);
    };
    const std::string one = Tests::Text({Matrix4::Identity.m, Matrix4::Identity.m + 16});
    Vorn2DObj object;
    EXPECT_EQ(text(object), "0 0 0 0 0 0 1 none 0 0 0 " + one + ' ' + one);
    object.mPosition = Vector3(1, 2, 3);
    object.mAngle = 4, object.mWidth = 5, object.mHeight = 6, object.mVisible = false;
    object.mTexture = textures.Get("t");
    object.mUserData[0] = 7, object.mUserData[3] = 8, object.mUserFlag = 9;
    object.mUserMatrix0.m[1] = object.mUserMatrix1.m[2] = 10;
    EXPECT_EQ(text(Vorn2DObj(object)), "1 2 3 4 5 6 0 texture 0 0 0 " + one + ' ' + one);
    Vorn2DObj other;
    other = object;
    EXPECT_EQ(text(other), text(object));
}

TEST_F(Flat, EachLivingParticleIsAQuadInTheOrderOfListAndPool) {
    textures.Load("WhiteParticle.dds");
    EXPECT_THAT(Particles(), ElementsAreArray(ParticleStates)); // of no emitter
    Source first("u", 4), second("t", 2);
    EXPECT_THAT(Glow(), ElementsAreArray(ParticleStates)); // of emitters without particles
    const Vector3 a(1, 1, 1), b(-2, 3.5f, 100), c(0, 0, -50), d(9, 9, 9), size(2, 3, 0);
    second.Spawn(d, Vector3(1, 1, 1));
    first.Spawn(a, size);
    first.Spawn(b, Vector3(5, 6, 7), 1);
    first.Spawn(c, size);
    const auto quads = [&](const char* u, const char* t) {
        return Quad(c, size, Image(u)) + Quad(a, size, Image(u)) +
               Quad(d, Vector3(1, 1, 1), Image(t));
    };
    first.Update(2); // the second one dies
    EXPECT_EQ(One(Quad(a, size, Image("t")), "SetMatrix worldMatrix"),
              "2 0 0 0 0 3 0 0 0 0 0 0 1 1 1 1");
    EXPECT_THAT(Particles(), ElementsAreArray(ParticleStates + quads("u", "t")));
    EXPECT_THAT(Glow(),
                ElementsAreArray(ParticleStates + quads("WhiteParticle.dds", "WhiteParticle.dds")));
    // Without a texture only the second pass has it; an entry of the store that is empty is white.
    first.Forget();
    folder.File("data/img/t", "no image");
    textures.Release(), textures.Reload();
    EXPECT_THAT(Particles(), ElementsAreArray(ParticleStates + Quad(d, Vector3(1, 1, 1), nullptr)));
    EXPECT_THAT(Glow(),
                ElementsAreArray(ParticleStates + quads("WhiteParticle.dds", "WhiteParticle.dds")));
    // The list is the one of the emitters, whatever comes and goes.
    emitters.Unregister(&second);
    EXPECT_THAT(Particles(), ElementsAreArray(ParticleStates));
    emitters.Register(&second);
    emitters.Register(&second);
    EXPECT_EQ(Only(Particles(), "SetTexture ModelTexture").size(), 2u);
}

TEST_F(Flat, TheGlowNeedsItsTextureForALivingParticleOnly) {
    EXPECT_THAT(Glow(), ElementsAreArray(ParticleStates));
    Source source("t", 2);
    EXPECT_THAT(Glow(), ElementsAreArray(ParticleStates));
    source.Spawn(Vector3(), Vector3(1, 1, 1), 1);
    EXPECT_THAT([&] { system.RenderParticleGlowOverLay(); },
                ThrowsMessage<std::out_of_range>(HasSubstr("invalid map<K, T> key")));
    EXPECT_EQ(Only(Particles(), "SetTexture ModelTexture").size(), 1u);
    source.Update(2);
    EXPECT_THAT(Glow(), ElementsAreArray(ParticleStates));
}

TEST_F(Flat, BeforeEmittersAreReadyAndWithoutADeviceNothingIsDrawn) {
    textures.Load("WhiteParticle.dds");
    Source source("t", 2);
    source.Spawn(Vector3(), Vector3(1, 1, 1));
    system.EmitterList(nullptr);
    const auto drawn = [&] { return Only(Particles() + Glow(), "DrawIndexedPrimitive"); };
    EXPECT_THAT(drawn(), IsEmpty());
    emitters.Init();
    ASSERT_NE(system.EmitterList(), nullptr);
    source.Spawn(Vector3(), Vector3(1, 1, 1));
    EXPECT_EQ(drawn().size(), 4u);
    Vorn2DObj object;
    textures.Release();
    graphic.Free();
    EXPECT_THAT(Draw(object) + Draw(object, 1, true) + Distort() + drawn(), IsEmpty());
}

TEST_F(Flat, TheLastPassTakesStatesFormatAndValuesInOrder) {
    WriteShaders({{"distortionshader.fx",
                   RenderTests::Head + RenderTests::Technique("TransformTech", 7, "Plain")}});
    engine.Reset();
    const D3DXMATRIX view = Matrix4::Translation(1, 2, 3), projection = Matrix4::Scaling(4, 5, 6);
    Vorn::Graphic::GetDevice()->SetTransform(D3DTS_VIEW, &view);
    Vorn::Graphic::GetDevice()->SetTransform(D3DTS_PROJECTION, &projection);
    Times(1);
    SetFrame(0.0625);
    const Texts quad = Calls([&] { graphic.DrawTwoD(World(Vector3(), Vector3()), Image("t")); });
    Texts expected = {"SetRenderState 27 1",
                      "SetRenderState 22 1",
                      "SetRenderState 25 7",
                      "SetRenderState 24 8",
                      "SetRenderState 15 1",
                      "GetTechniqueByName TransformTech",
                      "SetTechnique TransformTech",
                      "SetFVF 322",
                      "SetVertexDeclaration " + One(quad, "SetVertexDeclaration"),
                      "SetStreamSource " + One(quad, "SetStreamSource"),
                      "SetIndices " + One(quad, "SetIndices"),
                      "SetMatrix worldMatrix 800 0 0 0 0 600 0 0 0 0 0 0 400 300 0 1",
                      "SetMatrix viewMatrix " + Elements(view),
                      "SetMatrix projectionMatrix " + Elements(projection),
                      "SetTexture ModelTexture " + ObjectName(graphic.GeTRTexture()),
                      "SetTexture BeamTexture " + ObjectName(graphic.GeTRBeamTexture()),
                      "SetTexture ParticlesTexture " + ObjectName(graphic.GeTRParticlesTexture()),
                      "SetFloat Time 0.0625",
                      "SetFloat TargetTime 0.0625",
                      "SetBool distortion 1",
                      "SetFloatArray center 0.75 0.25 2",
                      "Begin 0"};
    for (int i = 0; i < 7; ++i)
        expected = expected + Texts{"BeginPass " + std::to_string(i),
                                    "DrawIndexedPrimitive 4 0 0 4 0 2", "EndPass"};
    EXPECT_THAT(Distort(Point2(0.5f, -0.5f), true), ElementsAreArray(expected + Texts{"End"}));
    for (const auto& [x, y, center] : {std::tuple(0.0f, 0.0f, "0.5 0.5 2"),
                                       {1.0f, -1.0f, "1 0 2"},
                                       {-1.0f, 1.0f, "0 1 2"},
                                       {3.0f, -5.0f, "2 -2 2"}}) {
        const Texts calls = Distort(Point2(x, y), false);
        EXPECT_EQ(One(calls, "SetFloatArray center"), center);
        EXPECT_EQ(One(calls, "SetBool distortion"), "0");
    }
    WriteShaders({{"distortionshader.fx", RenderTests::Head}});
    engine.Reset();
    EXPECT_EQ(Distort().back(), "Begin 0"); // fails, without a technique
}

TEST_F(Flat, TheTwoTimesGoOnInEachCallAndStartAgainAboveTheirLimits) {
    struct Row {
        double frame;
        const char* times;
    };
    const Row rows[] = {
        {1, "0 0"}, // from whatever stood there
        {0.03, "0.03 0.03"}, {0.03, "0.06 0.06"},
        {0.03, "0.09 0"},    {0.03, "0.12 0.03"},
        {3, "0.12 0.03"}, // a pause is a frame of no time
        {0.5, "0.62 0"},     {0.05, "0.67 0.05"},
        {0.05, "0 0"},       {0.7, "0.7 0"}, // the limit itself stays
        {0.001, "0 0.001"},  {0.70000005, "0 0"},
        {0.07, "0.07 0"}, // the float lies just above the limit, which is a double
        {1, "0 0"},          {0.069999993, "0.07 0.07"},
    };
    bool distortion = false;
    for (const Row& row : rows) {
        EXPECT_EQ(Times(row.frame, distortion), row.times) << row.frame;
        distortion = !distortion;
    }
    Times(1);
    Times(0.03);
    engine.Reset();
    EXPECT_EQ(Times(0.03), "0.06 0.06");
}

TEST_F(Flat, ATempFontIsMadeByTheNameThatWasToldLast) {
    const int before = VornPlatform::CountLiveObjects().fonts;
    const auto made = [&](const std::function<void()>& action) {
        VornPlatform::CallLog log;
        action();
        const Texts calls = Only(Tests::Take(log), "D3DXCreateFontA");
        EXPECT_LE(calls.size(), 1u);
        return calls.empty() ? "" : calls[0];
    };
    const auto head = [] {
        return ObjectName(Vorn::Graphic::GetDevice()) + " 22 0 400 1 0 1 0 4 0 ";
    };
    Vorn::TempFont font;
    const auto text = [&] {
        return Calls([&] { font.tempRenderText(300, 20, 0x80FF4020u, "left of here"); });
    };
    EXPECT_THAT(text(), IsEmpty());
    font.Release();
    EXPECT_EQ(made([&] { font.createTempText("DejaVu Sans"); }), head() + "\"DejaVu Sans\"");
    EXPECT_THAT(text(), ElementsAre("DrawTextA null left of here -1 300 20 1 21 256 2164211744"));
    EXPECT_EQ(made([&] { font.createTempText("Other"); }), "");
    for (int i = 0; i < 2; ++i) { // also over a font that is there
        EXPECT_EQ(made([&] { font.Reload(); }), head() + "\"Other\"");
        EXPECT_EQ(VornPlatform::CountLiveObjects().fonts, before + 1);
    }
    EXPECT_EQ(text().size(), 1u);
    for (int i = 0; i < 2; ++i)
        font.Release();
    EXPECT_EQ(VornPlatform::CountLiveObjects().fonts, before);
    EXPECT_THAT(text(), IsEmpty());
    engine.Reset();
    EXPECT_THAT(text(), IsEmpty());
    font.Reload();
    EXPECT_EQ(text().size(), 1u);
    font.Release();
    const std::string name = made([&] { font.createTempText(std::string(300, 'n').c_str()); });
    EXPECT_GE(name.size(), head().size() + 254 + 2); // and the quotation marks
    EXPECT_LE(name.size(), head().size() + 255 + 2);
    EXPECT_EQ(name, head() + '"' + std::string(name.size() - head().size() - 2, 'n') + '"');
    font.Release();
    Close();
    font.createTempText("DejaVu Sans");
    font.Reload();
    EXPECT_THAT(text(), IsEmpty());
    Open();
    EXPECT_EQ(made([&] { font.Reload(); }), head() + "\"DejaVu Sans\"");
    // And goes with the object.
}

class FlatPicture : public Tests::PictureTest {
protected:
    FlatPicture() {
        folder.File("data/img/four", Tests::Tga(2, 2, {Red, Green, Blue, White}));
        for (const auto& [name, colour] :
             {std::pair("red", Red), {"green", Green}, {"blue", Blue}, {"white", White}})
            folder.File(std::string("data/img/") + name, Tests::Tga(colour));
    }
    ~FlatPicture() override { system.EmitterList(nullptr); }
    /// With a camera of 800 to 600 units, which pixels' centres are in the large picture.
    void Start(unsigned int width = 800, unsigned int height = 600) {
        Open(width, height);
        for (const char* name : {"four", "red", "green", "blue", "white"})
            textures.Load(name);
        graphic.SetView(Matrix4::Identity);
        graphic.SetProjection(Matrix4::orthogonal(800, 600, 0, 1));
        graphic.SetBackBufferColor(Ground);
    }
    void Draw(const std::function<void()>& action) {
        graphic.BeginScene();
        action();
        graphic.EndScene();
    }
    /// From (left, top) up to (right, bottom), without them.
    void Object(const char* texture, float left, float top, float right, float bottom, float z = 0,
                float angle = 0, float alpha = -1) {
        Vorn2DObj object;
        object.mPosition = Vector3((left + right - 1) / 2, (top + bottom - 1) / 2, z);
        object.mWidth = right - left, object.mHeight = bottom - top, object.mAngle = angle;
        object.mTexture = textures.Get(texture);
        system.Render2DObj(&object, alpha, alpha >= 0);
    }
    Tests::Picture Shot(int width = 800, int height = 600) {
        Tests::Picture shot(width, height, 0);
        shot.pixels = Picture();
        return shot;
    }
    /// What the last pass makes of the targets.
    Tests::Picture Composed(int width = 800, int height = 600) {
        graphic.SetBackBufferColor(Ground);
        Draw([&] { graphic.DistortionEffect(Point2(), false); });
        return Shot(width, height);
    }

    static constexpr std::uint32_t Ground = 0xFF203040, Red = 0xFFFF0000, Green = 0xFF00FF00,
                                   Blue = 0xFF0000FF, White = 0xFFFFFFFF, Black = 0xFF000000;
    Vorn::Graphics2DSystem& system = *Vorn::Graphics2DSystem::Instance();
};

TEST_F(FlatPicture, AnObjectFillsItsRectangleWithItsTexture) {
    Start();
    Draw([&] {
        Object("red", 80, 190, 120, 210);
        Object("four", 300, 100, 340, 120);
        Object("four", 500, 100, 540, 120, 0, std::acos(0.0f));
    });
    Tests::Picture shot = Shot(), expected(800, 600, Ground);
    expected.Fill(80, 190, 120, 210, Red);
    const auto corners = [&shot](int left, int top, int right, int bottom) {
        return std::vector{shot.At(left, top), shot.At(right - 1, top), shot.At(left, bottom - 1),
                           shot.At(right - 1, bottom - 1)};
    };
    EXPECT_THAT(corners(300, 100, 340, 120), ElementsAre(Red, Green, Blue, White));
    EXPECT_THAT(corners(510, 90, 530, 130), ElementsAre(Blue, Red, White, Green));
    for (Tests::Picture* picture : {&shot, &expected}) {
        picture->Fill(300, 100, 340, 120, Black);
        picture->Fill(510, 90, 530, 130, Black);
    }
    EXPECT_TRUE(Tests::Same(shot, expected));
    // Thinned, as the host blends.
    Vorn::Graphic::GetDevice()->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    Vorn::Graphic::GetDevice()->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    Draw([&] { Object("red", 600, 400, 640, 420, 0, 0, 0.25f); });
    EXPECT_LE(Tests::Distance(Shot().At(620, 410), 0xFF582430), 2);
}

TEST_F(FlatPicture, ParticlesAreHiddenByWhatWasDrawnBeforeAndNotByEachOther) {
    Start();
    Vorn::EmitterSystem::Instance()->Init();
    Source near("green", 1), far("blue", 1), behind("white", 1);
    const Vector3 size(100, 100, 0);
    near.Spawn(Vector3(149.5f, 149.5f, 0.2f), size);
    far.Spawn(Vector3(199.5f, 199.5f, 0.3f), size);
    behind.Spawn(Vector3(449.5f, 149.5f, 0.7f), size);
    Draw([&] {
        Object("red", 80, 80, 450, 270, 0.5f);
        system.RenderParticle();
        Object("white", 160, 110, 180, 140, 0.25f); // farther than the particle that is there
    });
    Tests::Picture expected(800, 600, Ground);
    expected.Fill(80, 80, 450, 270, Red);
    expected.Fill(100, 100, 200, 200, Green);
    expected.Fill(150, 150, 250, 250, Blue); // farther, but drawn later
    expected.Fill(450, 100, 500, 200, White);
    expected.Fill(160, 110, 180, 140, White);
    EXPECT_TRUE(Tests::Same(Shot(), expected));
}

TEST_F(FlatPicture, TheLastPassFillsTheScreenWithTheThreeTargets) {
    const std::function<void()> begin[] = {[&] { graphic.RTBegin(); },
                                           [&] { graphic.RTBeamBegin(); },
                                           [&] { graphic.RTParticlesBegin(); }};
    const auto fill = [&](std::size_t target, std::uint32_t colour, const char* object = nullptr) {
        begin[target]();
        graphic.SetBackBufferColor(colour);
        if (object)
            Object(object, 100, 50, 250, 130);
        graphic.RTEnd();
    };
    for (const auto& [width, height] : {std::pair(400, 300), {800, 600}}) {
        Close();
        Start(static_cast<unsigned int>(width), static_cast<unsigned int>(height));
        const std::uint32_t scene = 0xFF402010, beams = 0xFF102080, particles = 0xFF804020;
        fill(0, scene), fill(1, 0), fill(2, 0);
        EXPECT_TRUE(Tests::Same(Composed(width, height), Tests::Picture(width, height, scene)));
        // Each shines through the others, and nothing gets brighter than white.
        fill(1, beams), fill(2, particles);
        EXPECT_LE(Tests::Distance(Composed(width, height).At(width / 2, height / 2), 0xFFA66D97),
                  1);
        fill(2, White);
        EXPECT_EQ(Composed(width, height).At(width / 2, height / 2), White);
    }
    // What stands in any of them comes out at its place.
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t other = 0; other < 3; ++other)
            fill(other, 0, other == i ? "green" : nullptr);
        Tests::Picture expected(800, 600, Black);
        expected.Fill(100, 50, 250, 130, Green);
        EXPECT_TRUE(Tests::Same(Composed(), expected)) << i;
    }
    // With distortion the wave moves what is near its ring.
    fill(0, 0, "four");
    SetFrame(1); // lets the times begin again
    const Tests::Pixels still = Composed().pixels;
    SetFrame(0.1);
    Draw([&] { graphic.DistortionEffect(Point2(-0.5f, -0.7f), true); });
    EXPECT_TRUE(Picture() != still);
}

} // namespace
