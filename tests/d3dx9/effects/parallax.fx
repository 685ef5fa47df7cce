//-----------------------------------------------------------------------------
// Parallax bump mapping, with the height in the normal map's alpha.
//-----------------------------------------------------------------------------
#define PARALLAX_SCALE 0.3
#define PARALLAX_BIAS (-0.1f)

float4x4 World         : WORLD;
float4x4 WorldViewProj : WORLDVIEWPROJECTION;

float3 EyePosition     : CAMERAPOSITION;
float3 LightDirection  < string UIName = "Light"; > = float3(0, -1, 0);
half4  AmbientColor    = half4(0.2, 0.2, 0.2, 1);
half4  LightColor      = { 0.8h, 0.8h, 0.8h, 1.0h };

texture DiffuseMap < string ResourceName = "stones.dds"; >;
texture NormalMap  < string ResourceName = "stones_nh.dds"; string ResourceType = "2D"; >;

sampler2D DiffuseSampler = sampler_state
{
    Texture   = <DiffuseMap>;
    MinFilter = Linear; MagFilter = Linear; MipFilter = Linear;
    AddressU  = Wrap;   AddressV  = Wrap;
};
sampler2D NormalSampler = sampler_state
{
    Texture   = <NormalMap>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = Linear;
};

struct a2v
{
    float4 position : POSITION;
    float3 normal   : NORMAL;
    float2 texCoord : TEXCOORD0;
    float3 tangent  : TANGENT;
    float3 binormal : BINORMAL;
};
struct v2f
{
    float4 position : POSITION;
    float2 texCoord : TEXCOORD0;
    float3 eyeVec   : TEXCOORD1;
    float3 lightVec : TEXCOORD2;
};

v2f view_vs(a2v In)
{
    v2f Out = (v2f)0;
    Out.position = mul(In.position, WorldViewProj);
    Out.texCoord = In.texCoord;

    // rows are the axes of the surface in world space
    float3x3 tbn = float3x3(mul(In.tangent, (float3x3)World),
                            mul(In.binormal, (float3x3)World),
                            mul(In.normal, (float3x3)World));
    float3 worldPos = mul(In.position, World).xyz;
    Out.eyeVec = mul(tbn, EyePosition - worldPos);
    Out.lightVec = mul(tbn, -LightDirection);
    return Out;
}

half4 view_ps(v2f In) : COLOR
{
    half3 v = normalize(In.eyeVec);
    half height = tex2D(NormalSampler, In.texCoord).a * PARALLAX_SCALE + PARALLAX_BIAS;
    half2 uv = In.texCoord + height * v.xy;

    half3 n = normalize(tex2D(NormalSampler, uv).rgb * 2 - 1);
    half4 base = tex2D(DiffuseSampler, uv);
    half diff = saturate(dot(n, normalize(In.lightVec)));
    return half4(base.rgb * (AmbientColor + LightColor * diff), base.a);
}

technique Parallax
{
    pass p0
    {
        CullMode = None;
        VertexShader = compile vs_2_0 view_vs();
        PixelShader  = compile ps_2_a view_ps();
    }
}
