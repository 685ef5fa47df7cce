// Four grounds, mixed by a map
#include "terrain_ground.fxh"

float4x4 WorldViewProjection;
struct SunLight { float3 direction; float ambient, diffuse; };
SunLight sun = { { 0, 0, 1 }, 0.25, 0.75 };

GROUND(0)
GROUND(1)
GROUND(2)
GROUND(3)
texture BlendMap;
sampler BlendSampler = sampler_state { Texture = <BlendMap>; MipFilter = LINEAR; };

struct MTVertexToPixel
{
    float4 Position     : POSITION;
    float3 Normal       : TEXCOORD0;
    float2 TextureCoords : TEXCOORD1;
    float4 LightDirection : TEXCOORD2;
};
struct MTPixelToFrame { float4 Color : COLOR0; };

MTVertexToPixel MultiTexturedVS(float4 inPos : POSITION, float3 inNormal : NORMAL, float2 inTexCoords : TEXCOORD0)
{
    MTVertexToPixel Output = (MTVertexToPixel)0;
    Output.Position = mul(inPos, WorldViewProjection);
    Output.Normal = inNormal;
    Output.TextureCoords = inTexCoords;
    Output.LightDirection.xyz = -sun.direction;
    Output.LightDirection.w = 1;
    return Output;
}

MTPixelToFrame MultiTexturedPS(MTVertexToPixel PSIn)
{
    MTPixelToFrame Output = (MTPixelToFrame)0;
    float lightingFactor = saturate(saturate(dot(PSIn.Normal, PSIn.LightDirection)) * sun.diffuse + sun.ambient);

    float4 weights = float4(tex2D(BlendSampler, PSIn.TextureCoords).rgb, 0);
    weights.w = max(0, 1 - dot(weights, 1));
    weights /= dot(weights, float4(1, 1, 1, 1));

    Output.Color = weights.x * READ(0, PSIn.TextureCoords * TILES);
    Output.Color += weights.y * READ(1, PSIn.TextureCoords * TILES);
    Output.Color += weights.z * READ(2, PSIn.TextureCoords * TILES);
    Output.Color += weights.w * READ(3, PSIn.TextureCoords * TILES);
    Output.Color.rgb *= lightingFactor;
    return Output;
}

technique MultiTextured
{
    pass Pass0
    {
        VertexShader = compile vs_1_1 MultiTexturedVS();
        PixelShader = compile ps_2_0 MultiTexturedPS();
    }
}
