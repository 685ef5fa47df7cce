// Toon shading in bands, over a black hull that is a little larger.
float4x4 WorldViewProjection : WorldViewProjection < string UIWidget = "None"; >;
float4 Color : DIFFUSE = { 0.8f, 0.4f, 0.2f, 1.0f };
float3 LightDir : DIRECTION = { 0.0f, 0.0f, 1.0f };
float OutlineThickness < string UIName = "Outline"; float UIMin = 0.0; float UIMax = 1.0; > = 0.5;

struct VertexInput  { float4 Position : POSITION0; float3 Normal : NORMAL0; };
struct VertexOutput { float3 Normal : TEXCOORD0; float4 Position : POSITION0; };

VertexOutput OutlineVS(VertexInput input)
{
    VertexOutput output = (VertexOutput)0;
    float4 grown = input.Position;
    grown.xy *= 1 + OutlineThickness;
    grown.z += 0.1;
    output.Position = mul(grown, WorldViewProjection);
    return output;
}
float4 OutlinePS() : COLOR0 { return float4(0, 0, 0, 1); }

VertexOutput CelVS(VertexInput input)
{
    VertexOutput output;
    output.Position = mul(input.Position, WorldViewProjection);
    output.Normal = input.Normal;
    return output;
}
float4 CelPS(VertexOutput input) : COLOR0
{
    float intensity = dot(normalize(input.Normal), -LightDir);
    float4 color = Color;
    if (intensity > 0.75)
        color = float4(1.0, 1, 1, 1.0) * color;
    else if (intensity > 0.35)
        color = float4(0.6, 0.6, 0.6, 1.0) * color;
    else
        color = float4(0.3, 0.3, 0.3, 1.0) * color;
    return color;
}

technique Toon
{
    pass Outline
    {
        VertexShader = compile vs_2_0 OutlineVS();
        PixelShader = compile ps_2_0 OutlinePS();
        ZEnable = TRUE;
        CullMode = NONE;
    }
    pass Cel
    {
        VertexShader = compile vs_2_0 CelVS();
        PixelShader = compile ps_2_0 CelPS();
    }
}
