float4 P() : COLOR { default: return 0; }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
