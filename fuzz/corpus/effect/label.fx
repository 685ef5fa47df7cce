float4 P() : COLOR { case 1: return 0; }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
