// SPDX-License-Identifier: MIT
//
// Models without light: Graphic::BasicShaderDraw, which GraphicsSystem::BeamEffects draws with.
// Blending is on, and both sides of a triangle show. docs/shaders.md has all names.

float4x4 worldMatrix;       // row vectors: a point is multiplied from the left
float4x4 viewMatrix;
float4x4 projectionMatrix;
texture ModelTexture;       // white where the material has none

sampler Surface = sampler_state
{
    Texture = <ModelTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = Linear;
    AddressU = Wrap;
    AddressV = Wrap;
};

struct Vertex
{
    float4 position : POSITION;
    float3 normal : NORMAL;
    float4 colour : COLOR0; // white in model files
    float2 uv : TEXCOORD0;
};

struct Pixel
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
};

Pixel PlaceVertex(Vertex vertex)
{
    Pixel pixel;
    float4 world = mul(float4(vertex.position.xyz, 1), worldMatrix);
    pixel.position = mul(mul(world, viewMatrix), projectionMatrix);
    pixel.colour = vertex.colour;
    pixel.uv = vertex.uv;
    return pixel;
}

float4 Unlit(Pixel pixel) : COLOR0
{
    return tex2D(Surface, pixel.uv) * pixel.colour;
}

technique TransformTech
{
    pass P0
    {
        VertexShader = compile vs_3_0 PlaceVertex();
        PixelShader = compile ps_3_0 Unlit();
    }
}
