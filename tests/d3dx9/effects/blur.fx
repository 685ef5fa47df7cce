//-----------------------------------------------------------------------------
// Gaussian blur of a picture of 16 by 16, in two techniques
//-----------------------------------------------------------------------------
texture SceneTexture;

sampler2D g_samSrc =
sampler_state
{
    Texture = <SceneTexture>;
    AddressU = Clamp;
    AddressV = Clamp;
    MinFilter = Point;
    MagFilter = Linear;
    MipFilter = Linear;
};

static const int g_cKernelSize = 9;

float2 PixelKernelH[g_cKernelSize] =
{
    { -4, 0 }, { -3, 0 }, { -2, 0 }, { -1, 0 }, { 0, 0 }, { 1, 0 }, { 2, 0 }, { 3, 0 }, { 4, 0 },
};
float2 TexelSize = { 1.0 / 16.0, 1.0 / 16.0 };

static const float BlendWeights[g_cKernelSize] =
    { 0.05, 0.09, 0.12, 0.15, 0.18, 0.15, 0.12, 0.09, 0.05 };

float4 Blur(float2 Tex : TEXCOORD0, uniform bool turned) : COLOR0
{
    float4 Color = 0;
    for (int i = 0; i < g_cKernelSize; i++)
    {
        float2 step = turned ? PixelKernelH[i].yx : PixelKernelH[i].xy;
        Color += tex2D(g_samSrc, Tex + step * TexelSize) * BlendWeights[i];
    }
    return Color;
}

technique Horizontal
<
    string Parameter0 = "TexelSize";
    float4 Parameter0Def = float4(0.0625, 0.0625, 0, 0);
    int Parameter0Size = 2;
>
{
    pass p0
    <
        float fScaleX = 1.0f;
        float fScaleY = 1.0f;
    >
    {
        VertexShader = null;
        PixelShader = compile ps_2_0 Blur(false);
        ZEnable = false;
    }
}
technique Vertical
{
    pass p0
    {
        VertexShader = null;
        PixelShader = compile ps_2_0 Blur(true);
        ZEnable = false;
    }
}
