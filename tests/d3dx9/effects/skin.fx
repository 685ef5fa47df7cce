//
// Skinned mesh, up to four bones a vertex
//
static const int MAX_BONES = 26;
float4x3 mBones[MAX_BONES] : WORLDMATRIXARRAY;
float4x4 mViewProj : VIEWPROJECTION;

struct VS_INPUT
{
    float4 Pos          : POSITION;
    float4 BlendWeights : BLENDWEIGHT;
    float4 BlendIndices : BLENDINDICES;
    float3 Normal       : NORMAL;
    float4 Diffuse      : COLOR0;
};
struct VS_OUTPUT
{
    float4 Pos     : POSITION;
    float4 Diffuse : COLOR;
};

VS_OUTPUT VShade(VS_INPUT i, uniform int NumBones)
{
    VS_OUTPUT o;
    float3 Pos = 0.0f;
    float LastWeight = 0.0f;

    int4 IndexVector = (int4)i.BlendIndices;
    // cast the vectors to arrays for use in the for loop below
    float BlendWeightsArray[4] = (float[4])i.BlendWeights;
    int IndexArray[4] = (int[4])IndexVector;

    for (int iBone = 0; iBone < NumBones - 1; iBone++)
    {
        LastWeight = LastWeight + BlendWeightsArray[iBone];
        Pos += mul(i.Pos, mBones[IndexArray[iBone]]) * BlendWeightsArray[iBone];
    }
    LastWeight = 1.0f - LastWeight;
    Pos += (mul(i.Pos, mBones[IndexArray[NumBones - 1]]) * LastWeight);

    o.Pos = mul(float4(Pos.xyz, 1.0f), mViewProj);
    o.Diffuse = i.Diffuse;
    return o;
}

int CurNumBones = 2;
VertexShader vsArray[2] = { compile vs_1_1 VShade(1), compile vs_2_0 VShade(4) };

float4 PShade(float4 c : COLOR0) : COLOR { return c; }

technique Skinned { pass p0 { VertexShader = compile vs_2_0 VShade(4); PixelShader = compile ps_2_0 PShade(); } }
technique Rigid   { pass p0 { VertexShader = compile vs_2_0 VShade(1); PixelShader = compile ps_2_0 PShade(); } }
