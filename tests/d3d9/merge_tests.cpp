// SPDX-License-Identifier: MIT
//
// Draws that are merged below the interface: they are fewer, and nothing else can be told of them.
#include "tests/support/shaders.hpp"

#include <functional>

namespace Tests {

using VornPlatform::CountFrame;

class MergeTest : public ShaderTest {
protected:
    struct Vertex {
        float x, y, z;
        D3DCOLOR color;
        float u, v;
    };
    /// The block of the effect.
    struct Constants {
        float place[4] = {0, 0, 0, 0}; // in clip space
        float scale[4] = {1, 1, 1, 1};
        float tint[4] = {1, 1, 1, 1};
    };
    static constexpr const char* members = "vec4 place; vec4 scale; vec4 tint;";

    void SetUp() override {
        ShaderTest::SetUp();
        const std::string body =
            "vec3 at; vec2 uv; vec4 to; vec4 c; vec2 t; void shader_main() {"
            "to = vec4(at * g.scale.xyz + g.place.xyz, 1.0); c = g.tint; t = uv; }";
        vertex = MakeVertex(WithBlock(VertexCode(body,
                                                 {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 1},
                                                  {"t", "vec2", D3DDECLUSAGE_TEXCOORD, 0}},
                                                 {{"at", "vec3", D3DDECLUSAGE_POSITION, 0},
                                                  {"uv", "vec2", D3DDECLUSAGE_TEXCOORD, 0}}),
                                      members, sizeof(Constants)));
        const std::vector<ShaderVariable> inputs = {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 1},
                                                    {"t", "vec2", D3DDECLUSAGE_TEXCOORD, 0}};
        pixel = MakePixel(
            WithBlock(PixelCode("vec4 c; vec2 t; void shader_main() { color = c; }", inputs),
                      members, sizeof(Constants)));
        ShaderCode sampling = PixelCode("vec4 c; vec2 t; uniform sampler2D s;"
                                        "void shader_main() { color = c * texture(s, t); }",
                                        inputs);
        sampling.samplers = {{"s", 2}};
        textured = MakePixel(WithBlock(sampling, members, sizeof(Constants)));
        reading = MakePixel(WithBlock(
            PixelCode("vec4 c; vec2 t; void shader_main() { color = c * g.tint.zyxw; }", inputs),
            members, sizeof(Constants)));

        vertices = Vertices<Vertex>({{-1, 1, 0, white, 0, 0},
                                     {1, 1, 0, white, 1, 0},
                                     {1, -1, 0, white, 1, 1},
                                     {-1, -1, 0, white, 0, 1},
                                     {0, -1, 0, white, 0, 1}},
                                    imageFvf, D3DPOOL_DEFAULT, D3DUSAGE_DYNAMIC);
        indices = Indices<std::uint32_t>({0, 1, 2, 2, 3, 0, 0, 1, 4});
        Use();
        Set(D3DRS_ZENABLE, FALSE);
        device->Present(nullptr, nullptr, nullptr, nullptr);
        device->BeginScene();
    }
    void TearDown() override {
        device->EndScene();
        device->SetVertexShader(nullptr);
        device->SetPixelShader(nullptr);
    }
    void Use() {
        device->SetVertexShader(vertex), device->SetPixelShader(pixel);
        device->SetFVF(imageFvf);
        device->SetStreamSource(0, vertices, 0, sizeof(Vertex));
        device->SetIndices(indices);
    }
    /// A square of 4 pixels, at a cell of a grid of 16 by 16.
    void Square(int cell, D3DCOLOR color, UINT triangles = 2) {
        Constants c;
        c.place[0] = (static_cast<float>(cell % 16) + 0.5f) / 8 - 1;
        c.place[1] = 1 - (static_cast<float>(cell / 16) + 0.5f) / 8;
        c.scale[0] = c.scale[1] = 1.0f / 16;
        for (std::size_t i = 0; i < 4; ++i)
            c.tint[i] = static_cast<float>(Channels(color)[i]) / 255;
        Host().SetEffectConstants(&c, sizeof c);
        EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, triangles));
    }
    static void Expect(Picture& picture, int cell, std::uint32_t color) {
        const int x = cell % 16 * 4, y = cell / 16 * 4;
        picture.Fill(x, y, x + 4, y + 4, color);
    }
    /// Draws of OpenGL since the last call; what waits is drawn first.
    int DrawCalls() {
        Pixel();
        const int calls = CountFrame().drawCalls;
        return calls - std::exchange(counted, calls);
    }

    Held<IDirect3DVertexShader9> vertex;
    Held<IDirect3DPixelShader9> pixel, textured, reading;
    Held<IDirect3DVertexBuffer9> vertices;
    Held<IDirect3DIndexBuffer9> indices;
    int counted = 0;
};

TEST_F(MergeTest, ManyDrawsBecomeFewAndEachKeepsItsConstants) {
    Picture expected(Side, Side, black);
    DrawCalls();
    for (int round = 0; round < 40; ++round) // more than one array of blocks holds
        for (int cell = 0; cell < 256; ++cell) {
            const std::uint32_t color = Packed(cell, round, 255 - cell);
            Square(cell, color);
            Expect(expected, cell, color);
        }
    EXPECT_LE(DrawCalls(), 40 * 256 / 100);
    EXPECT_TRUE(Same(Screen(), expected));
    EXPECT_EQ(CountFrame().draws, 40 * 256);
}

TEST_F(MergeTest, WhatAnEffectSetsAndPutsBackBetweenDrawsIsNoChange) {
    const D3DVERTEXELEMENT9 elements[] = {{0, 0, D3DDECLTYPE_FLOAT3, 0, D3DDECLUSAGE_POSITION, 0},
                                          {0, 12, D3DDECLTYPE_D3DCOLOR, 0, D3DDECLUSAGE_COLOR, 0},
                                          {0, 16, D3DDECLTYPE_FLOAT2, 0, D3DDECLUSAGE_TEXCOORD, 0},
                                          D3DDECL_END()};
    Held<IDirect3DVertexDeclaration9> declaration;
    ASSERT_EQ(D3D_OK, device->CreateVertexDeclaration(elements, declaration.Out()));
    const Held<IDirect3DTexture9> texture = Texture(Picture(1, 1, white));
    Picture expected(Side, Side, black);
    D3DXMATRIX matrix;
    Square(0, red);
    DrawCalls();
    const int changes = CountFrame().stateChanges;
    for (int cell = 0; cell < 100; ++cell) {
        Set(D3DRS_ALPHABLENDENABLE, TRUE), Set(D3DRS_ALPHATESTENABLE, TRUE);
        Set(D3DRS_ALPHAFUNC, D3DCMP_GREATER);
        device->SetFVF(imageFvf);
        device->SetVertexDeclaration(declaration);
        device->SetStreamSource(0, vertices, 0, sizeof(Vertex));
        device->SetVertexShader(vertex), device->SetPixelShader(textured);
        device->SetTexture(2, texture);
        device->SetSamplerState(2, D3DSAMP_MINFILTER, D3DTEXF_LINEAR);
        // Of no say for these shaders:
        D3DXMatrixTranslation(&matrix, static_cast<float>(cell), 0, 0);
        device->SetTransform(D3DTS_WORLD, &matrix);
        device->SetTexture(0, cell % 2 ? texture.Get() : nullptr);
        Set(D3DRS_AMBIENT, static_cast<DWORD>(cell));
        Square(cell, Packed(cell, 200, 100));
        device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
        device->SetTexture(2, nullptr);
        device->SetSamplerState(2, D3DSAMP_MINFILTER, D3DTEXF_POINT);
        Set(D3DRS_ALPHABLENDENABLE, FALSE);
        Expect(expected, cell, Packed(cell, 200, 100));
    }
    EXPECT_EQ(DrawCalls(), 1);
    EXPECT_LE(CountFrame().stateChanges - changes, 12);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(MergeTest, WhatThePixelStageReadsOfItsBlockIsOfItsDraw) {
    const std::string all = "float f; int n; uint b; vec2 uv; vec4 list[2]; mat4 m;";
    const std::vector<ShaderVariable> none;
    const auto bodyOf = [](const std::string& sum) {
        return "float a_g; void shader_main() { float g_a = g.f; color = " + sum + "; }";
    };
    const ShaderCode place =
        WithBlock(VertexCode("vec3 at; vec4 to; void shader_main() {"
                             "to = vec4(at.xy / 16.0 + g.list[1].xy, 0.5, 1.0); }"),
                  all, 128);
    struct Case {
        std::string color;
        int draws;
    };
    for (const Case& c : {Case{"vec4(g.f, float(g.n) / 255.0, g.uv.y, g.b != 0u ? 1.0 : 0.0)", 1},
                          Case{"vec4(g_a, g.list[0].yz, g.b != 0u ? 1.0 : 0.0)", 32},
                          Case{"vec4(g.m[0].x, g.list[0].yz, 1.0)", 32}}) {
        device->SetVertexShader(MakeVertex(place));
        device->SetPixelShader(MakePixel(WithBlock(PixelCode(bodyOf(c.color)), all, 128)));
        Picture expected(Side, Side, black);
        Clear(black);
        DrawCalls();
        for (int cell = 0; cell < 32; ++cell) {
            struct {
                float f;
                std::int32_t n;
                std::uint32_t b = 1;
                float gap, uv[2], gap2[2], list[2][4], m[4][4];
            } block = {};
            block.f = block.m[0][0] = static_cast<float>(cell) / 255;
            block.n = 100 + cell, block.list[0][1] = static_cast<float>(100 + cell) / 255;
            block.uv[1] = block.list[0][2] = static_cast<float>(200 - cell) / 255;
            block.list[1][0] = (static_cast<float>(cell % 16) + 0.5f) / 8 - 1;
            block.list[1][1] = 1 - (static_cast<float>(cell / 16) + 0.5f) / 8;
            Host().SetEffectConstants(&block, sizeof block);
            device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2);
            Expect(expected, cell, Packed(cell, 100 + cell, 200 - cell));
        }
        EXPECT_EQ(DrawCalls(), c.draws) << c.color;
        EXPECT_TRUE(Same(Screen(), expected)) << c.color;
    }
}

TEST_F(MergeTest, WhateverElseDiffersOrIsTouchedComesBetween) {
    const Held<IDirect3DTexture9> one = Texture(Picture(1, 1, white)),
                                  other = Texture(Picture(1, 1, 0xff808080)), target = Target();
    const Held<IDirect3DSurface9> surface = Level(target), back = BackBuffer();
    const Held<IDirect3DPixelShader9> twin =
        MakePixel(WithBlock(PixelCode("vec4 c; void shader_main() { color = c.bgra; }",
                                      {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 1}}),
                            members, sizeof(Constants)));
    const std::vector<Vertex> half = {
        {-1, 1, 0, white, 0, 0}, {1, 1, 0, white, 1, 0}, {-1, -1, 0, white, 0, 1}};
    struct Case {
        const char* what;
        std::function<void()> change;
    };
    const D3DVIEWPORT9 small = {0, 0, 32, 64, 0, 1};
    const std::vector<Case> cases = {
        {"blend", [&] { Set(D3DRS_ALPHABLENDENABLE, TRUE); }},
        {"blend factor", [&] { Set(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA); }},
        {"depth", [&] { Set(D3DRS_ZENABLE, TRUE); }},
        {"cull", [&] { Set(D3DRS_CULLMODE, D3DCULL_NONE); }},
        {"fill", [&] { Set(D3DRS_FILLMODE, D3DFILL_WIREFRAME); }},
        {"alpha", [&] { Set(D3DRS_ALPHAREF, 9); }},
        {"alpha test",
         [&] { Set(D3DRS_ALPHATESTENABLE, TRUE), Set(D3DRS_ALPHAFUNC, D3DCMP_LESS); }},
        {"viewport", [&] { device->SetViewport(&small); }},
        {"target", [&] { device->SetRenderTarget(0, surface); }},
        {"stride", [&] { device->SetStreamSource(0, vertices, 0, sizeof(Vertex) - 4); }},
        {"offset", [&] { device->SetStreamSource(0, vertices, 4, sizeof(Vertex)); }},
        {"format", [&] { device->SetFVF(flatFvf); }},
        {"pixel shader", [&] { device->SetPixelShader(twin); }},
        {"texture", [&] { device->SetTexture(2, other); }},
        {"sampler", [&] { device->SetSamplerState(2, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP); }},
        {"clear", [&] { device->Clear(0, nullptr, D3DCLEAR_TARGET, 0, 1, 0); }},
        {"write to vertices", [&] { Write(vertices.Get(), half); }},
        {"write to a texture", [&] { FillLevel(one, 0, Picture(1, 1, red)); }},
        {"readback", [&] { Pixel(); }},
    };
    for (const Case& c : cases) {
        const bool samples = std::string(c.what).find("texture") != std::string::npos ||
                             std::string(c.what) == "sampler";
        device->SetPixelShader(samples ? textured : pixel);
        device->SetTexture(2, one);
        Square(0, red), Square(1, red);
        DrawCalls();
        for (int cell = 0; cell < 8; ++cell)
            Square(cell, red);
        EXPECT_EQ(DrawCalls(), 1) << c.what;
        for (int cell = 0; cell < 8; ++cell)
            Square(cell, red);
        c.change();
        for (int cell = 0; cell < 8; ++cell)
            Square(cell, red);
        EXPECT_GE(DrawCalls(), 2) << c.what;
        // As it was.
        D3DVIEWPORT9 whole = {0, 0, Side, Side, 0, 1};
        device->SetRenderTarget(0, back), device->SetViewport(&whole);
        Set(D3DRS_ALPHABLENDENABLE, FALSE), Set(D3DRS_SRCBLEND, D3DBLEND_ONE);
        Set(D3DRS_ZENABLE, FALSE), Set(D3DRS_CULLMODE, D3DCULL_CCW);
        Set(D3DRS_FILLMODE, D3DFILL_SOLID), Set(D3DRS_ALPHATESTENABLE, FALSE);
        Use();
    }
}

TEST_F(MergeTest, DrawsThatCameBeforeKeepTheOldContentOfBuffersAndTextures) {
    const Held<IDirect3DTexture9> texture = Texture(Picture(1, 1, red));
    Picture expected(Side, Side, black);
    device->SetPixelShader(textured);
    device->SetTexture(2, texture);
    for (int cell = 0; cell < 8; ++cell)
        Square(cell, white), Expect(expected, cell, red);
    FillLevel(texture, 0, Picture(1, 1, green));
    for (int cell = 8; cell < 16; ++cell)
        Square(cell, white), Expect(expected, cell, green);
    // The square becomes its left half, by its vertices, and then its upper one, by its indices.
    std::vector<Vertex> left = {{-1, 1, 0, white, 0, 0}, {0, 1, 0, white, 1, 0},
                                {0, -1, 0, white, 1, 1}, {-1, -1, 0, white, 0, 1},
                                {1, 0, 0, white, 0, 1},  {-1, 0, 0, white, 0, 1},
                                {1, 1, 0, white, 0, 1}};
    vertices = Vertices(left, imageFvf, D3DPOOL_DEFAULT, D3DUSAGE_DYNAMIC);
    device->SetStreamSource(0, vertices, 0, sizeof(Vertex)); // the old one dies here
    for (int cell = 16; cell < 24; ++cell) {
        Square(cell, white);
        expected.Fill(cell % 16 * 4, 4, cell % 16 * 4 + 2, 8, green);
    }
    void* data = nullptr;
    ASSERT_EQ(D3D_OK, indices->Lock(0, 0, &data, 0));
    const std::uint32_t upper[] = {0, 6, 4, 4, 5, 0};
    std::memcpy(data, upper, sizeof upper);
    indices->Unlock();
    for (int cell = 24; cell < 32; ++cell) {
        Square(cell, white);
        expected.Fill(cell % 16 * 4, 4, cell % 16 * 4 + 4, 6, green);
    }
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(MergeTest, ObjectsMayDieWhileDrawsWait) {
    Picture expected(Side, Side, black);
    for (int cell = 0; cell < 8; ++cell)
        Square(cell, red), Expect(expected, cell, red);
    device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
    device->SetStreamSource(0, nullptr, 0, 0), device->SetIndices(nullptr);
    vertex.Free(), pixel.Free(), vertices.Free(), indices.Free();
    EXPECT_TRUE(Same(Screen(), expected));

    // A device with draws that wait is reset, and another ends.
    SetUp();
    for (int cell = 0; cell < 8; ++cell)
        Square(cell, green);
    vertices.Free(), indices.Free();
    D3DPRESENT_PARAMETERS pp = Parameters();
    EXPECT_EQ(D3DERR_INVALIDCALL, device->Reset(nullptr));
    EXPECT_EQ(D3D_OK, device->Reset(&pp));
    Clear(black);
    EXPECT_EQ(Screen().Count(black), Side * Side);
    SetUp();
    for (int cell = 0; cell < 8; ++cell)
        Square(cell, green);
}

TEST_F(MergeTest, IndicesFarApartOrBeyondTheBufferAreDrawnOneByOneToTheSameEffect) {
    // Far vertices first, then a base vertex, then no indices at all.
    std::vector<Vertex> many(3000, Vertex{0, 0, 0, white, 0, 0});
    many[0] = {-1, 1, 0, white, 0, 0}, many[1] = {1, 1, 0, white, 0, 0};
    many[2999] = {1, -1, 0, white, 0, 0};
    many[2000] = many[0], many[2001] = many[1], many[2002] = many[2999];
    const auto large = Vertices(many, imageFvf);
    const auto far = Indices<std::uint16_t>({0, 1, 2999, 0, 1, 2, 0, 1, 65535});
    device->SetStreamSource(0, large, 0, sizeof(Vertex));
    device->SetIndices(far);
    Constants c;
    const auto draw = [&](int kind) {
        for (int i = 0; i < 8; ++i) {
            c.place[0] = static_cast<float>(i) * 1e-9f;
            c.tint[0] = static_cast<float>(kind) / 4, c.tint[2] = static_cast<float>(i) / 7;
            Host().SetEffectConstants(&c, sizeof c);
            const UINT start = kind == 0 ? 0 : kind == 1 ? 3 : 6;
            const INT base = kind == 1 ? 2000 : 0;
            EXPECT_EQ(D3D_OK, kind < 3 ? device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, base, 0,
                                                                      3, start, 1)
                                       : device->DrawPrimitive(D3DPT_TRIANGLELIST, 2000, 1));
        }
    };
    for (const int kind : {0, 1, 3, 2}) {
        DrawCalls();
        draw(kind);
        EXPECT_EQ(DrawCalls(), kind == 0 || kind == 2 ? 8 : 1) << kind;
        if (kind != 2) { // what beyond the buffer is, only the machine knows
            EXPECT_LE(Distance(Pixel(40, 20), Packed(kind * 64, 255, 255)), 1) << kind;
        }
        Clear(black);
    }
}

// What a random host does, with and without something that keeps draws apart.
TEST_F(MergeTest, RandomDrawsGiveTheSamePixelsMergedOrNot) {
    const Held<IDirect3DTexture9> textures[] = {Texture(Picture(1, 1, 0xffff8040)),
                                                Texture(Picture(1, 1, 0x8040ff80))};
    const Held<IDirect3DTexture9> target = Target();
    const Held<IDirect3DSurface9> surfaces[] = {BackBuffer(), Level(target)};
    const auto play = [&](unsigned int seed, bool apart) {
        for (const auto& surface : surfaces) {
            device->SetRenderTarget(0, surface);
            Clear(black);
        }
        device->SetRenderTarget(0, surfaces[0]);
        for (const D3DRENDERSTATETYPE state :
             {D3DRS_ALPHABLENDENABLE, D3DRS_ALPHATESTENABLE, D3DRS_ZENABLE})
            Set(state, FALSE);
        for (const auto& texture : textures)
            FillLevel(texture, 0, Picture(1, 1, 0xffff8040));
        Use();
        std::mt19937 random(seed);
        const auto below = [&random](unsigned int n) {
            return static_cast<unsigned int>(random() % n);
        };
        const auto fraction = [&] { return static_cast<float>(below(1000)) / 1000; };
        UINT start = 0, triangles = 2;
        for (int step = 0; step < 400; ++step) {
            switch (below(100)) {
            case 0:
                Set(D3DRS_ALPHABLENDENABLE, below(2));
                Set(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
                Set(D3DRS_DESTBLEND, below(2) ? D3DBLEND_INVSRCALPHA : D3DBLEND_ONE);
                break;
            case 1:
                device->SetPixelShader(below(3) == 0 ? reading : below(2) ? textured : pixel);
                break;
            case 2:
                device->SetTexture(2, textures[below(2)]);
                break;
            case 3:
                device->SetRenderTarget(0, surfaces[below(2)]);
                break;
            case 4:
                device->Clear(0, nullptr, D3DCLEAR_TARGET, static_cast<D3DCOLOR>(random()), 1, 0);
                break;
            case 5: { // a draw of the fixed function between them
                device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
                Cover(0x20ffffff);
                Use();
                break;
            }
            case 6:
                Set(D3DRS_ALPHATESTENABLE, below(2)), Set(D3DRS_ALPHAFUNC, D3DCMP_GREATER);
                Set(D3DRS_ALPHAREF, below(3) * 60);
                break;
            case 7:
                Set(D3DRS_ZENABLE, below(2));
                break;
            case 8:
                FillLevel(textures[below(2)], 0, Picture(1, 1, static_cast<D3DCOLOR>(random())));
                break;
            case 9:
                start = below(2) * 3, triangles = 1 + below(2);
                break;
            default:
                break;
            }
            Constants c;
            for (float* value : {c.place, c.place + 1})
                *value = fraction() * 2 - 1;
            c.place[2] = fraction();
            c.scale[0] = fraction() / 2, c.scale[1] = fraction() / 2;
            for (float& value : c.tint)
                value = fraction();
            Host().SetEffectConstants(&c, sizeof c);
            device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 5, start, triangles);
            if (apart)
                Read(surfaces[0]);
        }
        return std::vector<Picture>{Read(surfaces[0]), Read(surfaces[1])};
    };
    int few = 0, many = 0;
    for (unsigned int seed = 0; seed < 12; ++seed) {
        // What comes apart draw by draw is given up for the frame.
        device->EndScene();
        device->Present(nullptr, nullptr, nullptr, nullptr);
        device->BeginScene();
        counted = 0;
        const auto merged = play(seed, false);
        few += DrawCalls();
        const auto apart = play(seed, true);
        many += DrawCalls();
        EXPECT_TRUE(Same(merged[0], apart[0])) << seed;
        EXPECT_TRUE(Same(merged[1], apart[1])) << seed;
    }
    EXPECT_LT(few, many / 2);
}

// Without shaders, each draw's place is its matrices.
class FixedMergeTest : public MergeTest {
protected:
    void SetUp() override {
        MergeTest::SetUp();
        device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
        Set(D3DRS_LIGHTING, FALSE);
    }
    /// Half of the matrices' way is the world's, and half the view's.
    void Square(int cell) {
        D3DXMATRIX world, view, identity;
        D3DXMatrixIdentity(&identity);
        D3DXMatrixTranslation(&world, (static_cast<float>(cell % 16) + 0.5f) / 8 - 1, 0, 0);
        D3DXMatrixTranslation(&view, 0, 1 - (static_cast<float>(cell / 16) + 0.5f) / 8, 0);
        world._11 = world._22 = 1.0f / 16;
        device->SetTransform(D3DTS_WORLD, &world);
        device->SetTransform(cell % 3 ? D3DTS_VIEW : D3DTS_PROJECTION, &view);
        device->SetTransform(cell % 3 ? D3DTS_PROJECTION : D3DTS_VIEW, &identity);
        EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
    }
};

TEST_F(FixedMergeTest, ManyDrawsBecomeFewAndEachKeepsItsPlace) {
    Picture expected(Side, Side, black);
    DrawCalls();
    for (int round = 0; round < 8; ++round)
        for (int cell = 0; cell < 256; cell += 1 + round % 2) {
            Square(cell);
            Expect(expected, cell, white);
        }
    EXPECT_LE(DrawCalls(), 8 * 256 / 100);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(FixedMergeTest, WhatTheFixedFunctionMakesOfAVertexComesBetween) {
    const Held<IDirect3DTexture9> grey = Texture(Picture(1, 1, 0xff808080));
    struct Case {
        const char* what;
        std::function<void()> change;
        std::uint32_t color;
    };
    const std::vector<Case> cases = {
        {"nothing", [] {}, white},
        {"lighting", [&] { Set(D3DRS_LIGHTING, TRUE); }, black},
        {"no lighting", [&] { Set(D3DRS_LIGHTING, FALSE); }, white},
        {"texture", [&] { device->SetTexture(0, grey); }, 0xff808080},
        {"stage", [&] { device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_ADD); }, white},
        {"coordinates",
         [&] {
             device->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_MODULATE);
             device->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2);
         },
         0xff808080},
        {"no texture", [&] { device->SetTexture(0, nullptr); }, white},
        {"shaders",
         [&] {
             const Constants none;
             device->SetVertexShader(vertex), device->SetPixelShader(pixel);
             Host().SetEffectConstants(&none, sizeof none);
         },
         white}};
    Picture expected(Side, Side, black);
    DrawCalls();
    int cell = 0, calls = 0;
    for (const Case& c : cases) {
        c.change();
        for (int i = 0; i < 3; ++i, ++cell) {
            Square(cell);
            Expect(expected, cell, c.color);
        }
        calls += DrawCalls();
        if (c.what == std::string("shaders"))
            expected = Picture(Side, Side, white); // its square fills the screen
        EXPECT_TRUE(Same(Screen(), expected)) << c.what;
    }
    EXPECT_GE(calls, static_cast<int>(cases.size()));
}

// A mesh that never has a like behind it goes by itself after some tries, and comes back.
TEST_F(FixedMergeTest, DrawsThatStayAloneLoseNothing) {
    Picture expected(Side, Side, black);
    const auto draw = [&](int cell, bool alone) {
        Set(D3DRS_ZWRITEENABLE, alone && cell % 2 == 0);
        Square(cell);
        Expect(expected, cell, white);
    };
    for (int cell = 0; cell < 255; ++cell)
        draw(cell, true);
    DrawCalls();
    for (int round = 0; round < 4; ++round)
        for (int cell = 0; cell < 256; ++cell)
            draw(cell, false);
    EXPECT_LE(DrawCalls(), 300);
    EXPECT_TRUE(Same(Screen(), expected));
}

} // namespace Tests
