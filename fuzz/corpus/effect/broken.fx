struct S { S s; }; S x; float a[0]; float b[99999999]; float4 P() : COLOR { float c[100000000]; return c[3] + noise(1); } technique { pass { PixelShader = compile ps_3_0 P(); } }
