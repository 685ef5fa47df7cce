float4 P(float2 t : TEXCOORD0) : COLOR { return t++++; }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
