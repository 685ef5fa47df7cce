float4 P(float t : TEXCOORD0) : COLOR { switch ((int)t) { case t: return 1; } return 0; }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
