float4 P() : COLOR { return P(); } technique { pass { PixelShader = compile ps_3_0 P(); } }
