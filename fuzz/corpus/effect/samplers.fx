sampler a; sampler b : register(s3); sampler c[2]; samplerCUBE d; sampler1D e; sampler3D f;
float4 Read(sampler s, float2 uv) { return tex2D(s, uv) + tex2Dlod(s, uv.xyxy) + tex2Dbias(s, uv.xyxy) + tex2Dproj(s, uv.xyxy); }
float4 P(float4 uv : TEXCOORD0, uniform sampler given) : COLOR {
    return Read(a, uv.xy) + Read(c[1], uv.xy) + texCUBE(d, uv.xyz) + texCUBEproj(b, uv) + tex1D(e, uv.x) + tex3D(f, uv.xyz) + Read(given, uv);
}
technique T { pass P { PixelShader = compile ps_3_0 P(c[0]); } }
