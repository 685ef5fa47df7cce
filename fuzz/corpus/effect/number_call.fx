void F() {} float4 P(float2 t : TEXCOORD0) : COLOR { return t.x > 0 ? F() : 0.5(); }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
