float4x4 m[2]; float4 P(float2 t : TEXCOORD0) : COLOR { return mul(t, m); }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
