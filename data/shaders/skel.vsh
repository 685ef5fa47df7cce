// SPDX-License-Identifier: MIT
//
// Models with bones, entry VertexBlend: Graphic::SetSkelMatrix, together with skel.psh.
//
// The vertex arrives in a view of its own of the mesh's 56 bytes: x of the normal lies under the
// colour, y and z under TEXCOORD0, and the real colour under its third float.

float4x4 WorldViewProj;         // row vectors: a point is multiplied from the left
float4x4 FinalTransforms[256];  // a bone each; as many as the model has are set

struct Vertex
{
    float4 position : POSITION;
    float4 normalX : COLOR0;    // the bytes of a float
    float3 normalYZ : TEXCOORD0;
    float2 uv : TEXCOORD1;
    float4 weights : BLENDWEIGHT;
    float4 bones : BLENDINDICES; // whole numbers from 0 to 255
};

struct Pixel
{
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
    float shade : TEXCOORD1;
};

// A float out of its four bytes: sign, exponent, fraction.
float FloatOf(float4 colour)
{
    float4 bytes = floor(colour.bgra * 255 + 0.5); // the lowest first, as they lie in memory
    float exponent = fmod(bytes.w, 128) * 2 + floor(bytes.z / 128);
    float fraction = (fmod(bytes.z, 128) * 65536 + bytes.y * 256 + bytes.x) / 8388608;
    float size = exponent > 0 ? (1 + fraction) * exp2(exponent - 127) : 0;
    return bytes.w < 128 ? size : -size;
}

// The library hands over no light, so shapes show by where they face: from dark below to bright
// above and in front, in the model's own space.
float ShadeOf(float3 normal)
{
    float3 n = normalize(normal + float3(0, 0.0001, 0));
    return saturate(0.65 + 0.35 * dot(n, normalize(float3(0.3, 1, -0.5))));
}

Pixel VertexBlend(Vertex vertex)
{
    float4 position = float4(vertex.position.xyz, 1);
    float3 normal = float3(FloatOf(vertex.normalX), vertex.normalYZ.xy);

    // What the weights leave out stays where the model has it.
    float left = 1 - dot(vertex.weights, 1);
    float3 blended = position.xyz * left;
    float3 turned = normal * left;
    for (int i = 0; i < 4; ++i)
    {
        float4x4 bone = FinalTransforms[(int)vertex.bones[i]];
        blended += mul(position, bone).xyz * vertex.weights[i];
        turned += mul(normal, (float3x3)bone) * vertex.weights[i];
    }

    Pixel pixel;
    pixel.position = mul(float4(blended, 1), WorldViewProj);
    pixel.uv = vertex.uv;
    pixel.shade = ShadeOf(turned);
    return pixel;
}
