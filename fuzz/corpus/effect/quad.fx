float4x4 world, view, projection;
texture picture;
sampler2D pictures = sampler_state { Texture = <picture>; MinFilter = Linear; };
struct Corner { float4 place : POSITION; float4 color : COLOR0; float2 uv : TEXCOORD0; };
Corner Vertex(float3 place : POSITION, float4 color : COLOR0, float2 uv : TEXCOORD0) {
    Corner corner = (Corner)0;
    corner.place = mul(float4(place, 1), mul(mul(world, view), projection));
    corner.color = color;
    corner.uv = uv;
    return corner;
}
float4 Pixel(Corner corner) : COLOR0 { return tex2D(pictures, corner.uv) * corner.color; }
technique Plain { pass P0 { VertexShader = compile vs_2_0 Vertex(); PixelShader = compile ps_2_0 Pixel(); } }
