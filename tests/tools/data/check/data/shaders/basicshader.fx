float4x4 worldMatrix;
float4x4 vieuMatrix;
float3x3 projectionMatrix;
texture ModelTexture;
float4 V(float4 p : POSITION) : POSITION { return mul(mul(p, worldMatrix), vieuMatrix); }
technique TransfromTech { pass P { VertexShader = compile vs_3_0 V(); } }
