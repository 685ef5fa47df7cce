float4 P(float2 t : TEXCOORD0) : COLOR { return t.x ? t : float3(1, saturate 2, 3); }
technique T { pass { PixelShader = compile ps_3_0 P(); } }
