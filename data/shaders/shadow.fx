// SPDX-License-Identifier: MIT
//
// The shadow of a model: Graphic::ShadowMap draws it half dark, into the target that is current. A
// world matrix that flattens the model onto the ground lays its shadow there. Where a model covers
// itself it is dark only once, because what lies at the same depth is not drawn again.

float4x4 worldMatrix;       // row vectors: a point is multiplied from the left
float4x4 viewMatrix;
float4x4 projectionMatrix;

static const float4 ShadowColour = float4(0, 0, 0, 0.5);

float4 PlaceVertex(float4 position : POSITION) : POSITION
{
    float4 world = mul(float4(position.xyz, 1), worldMatrix);
    return mul(mul(world, viewMatrix), projectionMatrix);
}

float4 Dark() : COLOR0
{
    return ShadowColour;
}

technique TransformTech
{
    pass P0
    {
        AlphaBlendEnable = TRUE;
        SrcBlend = SrcAlpha;
        DestBlend = InvSrcAlpha;
        ZWriteEnable = TRUE;
        ZFunc = Less;
        VertexShader = compile vs_3_0 PlaceVertex();
        PixelShader = compile ps_3_0 Dark();
    }
}
