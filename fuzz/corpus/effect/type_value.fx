float4 P(float2 t : TEXCOORD0) : COLOR { return float4(length(int2(float3, 4)), t, 1); }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
