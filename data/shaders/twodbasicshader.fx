// SPDX-License-Identifier: MIT
//
// Pictures in two dimensions: objects of the screen and particles, a square of size 1 each.
//
//   TransformTech    Graphic::DrawTwoD: the picture as it is
//   pixelmodulate    Graphic::DrawTwoDModulate: with an alpha of its own, and with fog
//
// Blending is on and pixels of an alpha below 8 of 255 are left out; how a picture blends is the
// host's to say (D3DRS_SRCBLEND, D3DRS_DESTBLEND). docs/shaders.md has all names.

float4x4 worldMatrix;       // row vectors: a point is multiplied from the left
float4x4 viewMatrix;
float4x4 projectionMatrix;
texture ModelTexture;       // white where the host has none

// pixelmodulate only:
float PF;                   // fog begins there ...
float PB;                   // ... and is all there is from here; none if it is not beyond PF
float R;                    // the library always sends 258, which leaves a colour as it is
float G;
float B;
float A;                    // 0 to 1

static const float FullColour = 258;
static const float3 FogColour = float3(0.5, 0.55, 0.6);

sampler Picture = sampler_state
{
    Texture = <ModelTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = Linear;
    AddressU = Clamp;       // the opposite edge does not show
    AddressV = Clamp;
};

struct Corner
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
};

struct Pixel
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
    float depth : TEXCOORD1; // distance from the eye, along the view
};

Pixel PlaceCorner(Corner corner)
{
    Pixel pixel;
    float4 seen = mul(mul(float4(corner.position.xyz, 1), worldMatrix), viewMatrix);
    pixel.position = mul(seen, projectionMatrix);
    pixel.colour = corner.colour;
    pixel.uv = corner.uv;
    pixel.depth = seen.z;
    return pixel;
}

float4 Plain(Pixel pixel) : COLOR0
{
    return tex2D(Picture, pixel.uv) * pixel.colour;
}

float4 Modulated(Pixel pixel) : COLOR0
{
    float4 colour = tex2D(Picture, pixel.uv) * pixel.colour;
    colour.rgb *= float3(R, G, B) / FullColour;
    colour.a *= A;
    float fog = PB > PF ? saturate((pixel.depth - PF) / (PB - PF)) : 0;
    colour.rgb = lerp(colour.rgb, FogColour, fog);
    return colour;
}

technique TransformTech
{
    pass P0
    {
        VertexShader = compile vs_3_0 PlaceCorner();
        PixelShader = compile ps_3_0 Plain();
    }
}

technique pixelmodulate
{
    pass P0
    {
        VertexShader = compile vs_3_0 PlaceCorner();
        PixelShader = compile ps_3_0 Modulated();
    }
}
