// Water: two normal maps that scroll over each other, and a fresnel term.
float Time : TIME;
float4 ScrollAndTile[2] =
{
    0.2, 0, 1, 1,       // speed, tiles
    -0.1, 0, 2, 1
};
float3 DeepColor = { 0.0, 0.1, 0.3 };
float4 ReflectionColor = 0.5;
const float R0 = 0.02;

Texture WaveMap;
sampler WaveSampler = sampler_state { texture = (WaveMap); magfilter = POINT; minfilter = POINT; mipfilter = NONE; AddressU = wrap; AddressV = wrap; };

void WaterVS(in float4 inPos : POSITION, in float2 inTex : TEXCOORD0,
             out float4 outPos : POSITION, out float2 outTex[2] : TEXCOORD0)
{
    outPos = inPos;
    for (int i = 0; i < 2; i++)
        outTex[i] = inTex * ScrollAndTile[i].zw + Time * ScrollAndTile[i].xy;
}

float fresnel(float cosine)
{
    return R0 + (1.0 - R0) * pow(saturate(1.0 - cosine), 5.0);
}

float4 WaterPS(float2 wave0 : TEXCOORD0, float2 wave1 : TEXCOORD1) : COLOR0
{
    float3 normal = (2.0 * tex2D(WaveSampler, wave0) - 1.0).rgb;
    normal += 2.0 * tex2D(WaveSampler, wave1) - 1.0; // cut to three numbers
    normal = normalize(normal);

    float f = fresnel(normal.z);
    float4 color;
    color.rgb = DeepColor + ReflectionColor * f;
    color.a = 0.5 + f / 2;
    return color;
}

technique Water { pass Single { VertexShader = compile vs_1_1 WaterVS(); PixelShader = compile ps_2_0 WaterPS(); } }
