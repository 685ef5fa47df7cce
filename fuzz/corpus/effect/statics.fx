float4 given = 1; static float4 half_ = given * 0.5; static const float3 axis = normalize(float3(1, 2, 3));
static const int N = 3; static const float weights[N] = {1, 2, 3};
void Change(inout float4 x) { x *= 2; }
float4 P(float2 place : VPOS, float face : VFACE, float4 c : COLOR1) : COLOR {
    Change(given); given.x += 1; float4 sum = 0;
    [unroll] for (int i = 0; i < N; ++i) sum += weights[i] * fmod(place.x, 2);
    clip(sum.x - 0.5); if (any(sum > 3)) discard;
    return (sum + half_ + given + axis.xyzz) * face + D3DCOLORtoUBYTE4(c) + lit(1, 2, 3) + place.x % 3;
}
technique T { pass P { PixelShader = compile ps_3_0 P(); } }
