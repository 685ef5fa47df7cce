struct In { float4 line : TEXCOORD0; half3 point : TEXCOORD1; };
FLOAT triangle; vector linear; matrix sample; float common, buffer, main;
typedef float3 Color; Color texture_;
float saturate(float x) { return x * 2; }
float4 P(In input, out float depth : DEPTH) : COLOR { vector<float, 3> v = input.point; unsigned int u = 3; double d = u; depth = saturate(d);
    return input.line * triangle + mul(linear, sample) + v.xyzz * common * buffer * main; }
technique T { pass P { PixelShader = compile ps_2_b P(); } }
