float4x4 m; float4 P(float2 t : TEXCOORD0) : COLOR { float4x4 n = lerp(abs(m), m, t.x); return n[t] + ddx(n)[1]; }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
