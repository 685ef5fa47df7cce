// sepia tone, post process
float4x4 unusedMatrix;
texture SceneMap : RENDERCOLORTARGET < float2 ViewportRatio = { 1.0, 1.0 }; int MipLevels = 1; string Format = "A8R8G8B8"; >;
sampler SceneSampler = sampler_state { texture = <SceneMap>; };
float Amount < string UIWidget = "slider"; float UIMin = 0.0f; float UIMax = 1.0f; float UIStep = 0.01f; > = 0.5f;

static const float3x3 toSepia = { 0.393, 0.769, 0.189,
                                  0.349, 0.686, 0.168,
                                  0.272, 0.534, 0.131 };
struct QuadVertexOutput { float4 Position : POSITION; float2 UV : TEXCOORD0; };

QuadVertexOutput ScreenQuadVS(float3 Position : POSITION, float3 TexCoord : TEXCOORD0)
{
    QuadVertexOutput OUT;
    OUT.Position = float4(Position, 1);
    OUT.UV = TexCoord.xy;
    return OUT;
}

half4 SepiaPS(QuadVertexOutput IN) : COLOR
{
    half3 scene = tex2D(SceneSampler, IN.UV);
    return half4(lerp(scene, saturate(mul(toSepia, scene)), Amount), 1);
}

technique Sepia < string Script = "RenderColorTarget0=; Pass=p0;"; >
{
    pass p0 < string Script = "Draw=Buffer;"; >
    {
        VertexShader = compile vs_1_1 ScreenQuadVS();
        cullmode = none;
        ZEnable = false;
        AlphaBlendEnable = false;
        PixelShader = compile ps_2_0 SepiaPS();
    }
}
