float4x4 worldMatrix;
float4 V(float4 p : POSITION) : POSITION { return mul(p, worldMatrx); }
technique TransformTech { pass P { VertexShader = compile vs_3_0 V(); } }
