float4x4 worldMatrix; float4x4 viewMatrix, projectionMatrix;
float PF = 3, A = 0.5;
struct Light { float3 pos; float4 ambient; float radius; };
Light lights;
float4 tint = {1,2,3,4};
float4x4 mm = {1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16};
texture ModelTexture;
sampler TextureSampler = sampler_state { Texture = <ModelTexture>; MinFilter = LINEAR; MagFilter = Linear; AddressU = Clamp; };
struct VS_OUTPUT { float4 Pos : POSITION; float4 Color : COLOR0; float2 uv : TEXCOORD0; };
static float3 sdir = normalize(lights.pos);
VS_OUTPUT VS(float3 p : POSITION, float4 c : COLOR0, float2 uv : TEXCOORD0) {
  VS_OUTPUT o = (VS_OUTPUT)0; float4x4 wvp = mul(mul(worldMatrix, viewMatrix), projectionMatrix);
  o.Pos = mul(float4(p, 1), wvp); o.Color = c * tint; o.uv = uv + sdir.xy; return o; }
float4 PS(VS_OUTPUT i, uniform bool bright, float2 vp : VPOS, float face : VFACE) : COLOR0 { float4 c = tex2D(TextureSampler, i.uv) * i.Color; A *= 2; if (bright) c += fmod(vp.x, 2) * face; return float4(c.rgb, c.a*A*mm._11_22.y); }
float broken() { return nothing; }
technique TransformTech { pass P0 { VertexShader = compile vs_2_0 VS(); PixelShader = compile ps_3_0 PS(true); CullMode = NONE; AlphaBlendEnable = true; } }
