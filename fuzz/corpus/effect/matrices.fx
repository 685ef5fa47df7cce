float4x4 m; row_major float3x4 r;
float4 V(float4 p : POSITION) : POSITION {
    float4x4 n = m; n._11_22 = p.xy; n._m00_m11 += p.zw; n[1].xyz = m._11_21_31; n *= m;
    float4x4 flat = {1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1}; float2 list[2] = {1, 2, p.xy};
    float cast[4] = (float[4])p; float4x4 t = transpose(n);
    return mul(p, n * t) + mul(p.xyz, r) + list[1].xyxy + cast[2] + flat[0];
}
technique { pass { VertexShader = compile vs_3_0 V(); } }
