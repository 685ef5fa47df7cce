/* A gradient sky that fades into fog where it meets the ground. */
uniform extern float4x4 matWorldViewProj : WORLDVIEWPROJ;
uniform extern float4 ZenithColor = float4(0.1f, 0.25f, 0.6f, 1.0f);
uniform extern float4 FogColor : FOGCOLOR = float4(0.7f, 0.75f, 0.8f, 1.0f);
float FogFalloff = 4.f;

struct OutputVS
{
    float4 posH   : POSITION0;
    float  height : TEXCOORD0;
};

OutputVS SkyVS(float3 posL : POSITION0)
{
    OutputVS outVS = (OutputVS)0;
    // z = w, so that the sky is at the far plane
    outVS.posH = mul(float4(posL, 1.0f), matWorldViewProj).xyww;
    outVS.height = posL.y;
    return outVS;
}

float4 SkyPS(float height : TEXCOORD0) : COLOR
{
    float h = max(height, 0);
    return lerp(ZenithColor, FogColor, exp(-h * h * FogFalloff));
}

technique SkyTech
{
    pass P0
    {
        vertexShader = compile vs_2_0 SkyVS();
        pixelShader  = compile ps_2_0 SkyPS();
        CullMode = None;
        ZFunc = LessEqual; // not only less
        ZWriteEnable = false;
        StencilEnable = false;
    }
}
