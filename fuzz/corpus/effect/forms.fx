struct VO { float4 p : POSITION; float4 c[2] : COLOR; float f : FOG; float s : PSIZE; float4x4 m : TEXCOORD2; };
float k = 2; bool glow = true; int n = 3; string s = "hi"; texture t1; textureCUBE t2;
float4 arr[2] = { {1,2,3,4}, {5,6,7,8} }; struct Q { float a; float3 b; } qq = { 1, {2,3,4} };
bool3 bb = {true,false,true}; float3x2 m32 = {1,2,3,4,5,6}; float4x4 ident = 1; int4 iv = {1,-2,3,4};
sampler S[2] = { sampler_state { Texture = <t1>; MipFilter = Point; }, sampler_state { Texture = <t1>; } };
VO V(float4 p : POSITION0, uniform float scale, uniform int mode = 2) { VO o = (VO)0; o.p = p*scale*mode; o.m[1] = p; return o; }
float4 P(VO i, uniform sampler2D q) : color { return tex2D(q, i.m[1].xy) * i.f + tex2D(S[1], i.c[1].xy); }
VertexShader vv = compile vs_3_0 V(k);
technique A <string note = "x"; float w = 0.5;> { pass p0 { VertexShader = <vv>; PixelShader = compile ps_2_0 P(S[0]); SrcBlend = One; Sampler[3] = <S[1]>; FillMode = n; LightAmbient[0] = {1,1,1,1}; }
 pass p1 { VertexShader = compile vs_2_0 V(k*2, 3); PixelShader = NULL; } pass p2 { VertexShader = compile vs_2_0 V(k*2, 3); } }
