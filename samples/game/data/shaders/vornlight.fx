// SPDX-License-Identifier: MIT
//
// The engine's vornlight.fx with the game's own look: the sea is dark, and the lamp reaches a few
// lengths of the boat. Lit models: Graphic::PhongLightingDraw, which GraphicsSystem::Update draws with.
//
//   colour = texture * vertex colour * (emissive + ambient + diffuse) + specular
//   colour = colour * mod / 255 + add / 255, then fog
//
// A material whose four lighting colours are all zero, as that of a file that names none, takes no
// part in lighting and shows its texture as it is.

struct Light
{
    float3 pos;             // Graphic::SetPointLightPosition
    float4 ambient;         // Graphic::SetPointLightSettings; w is 1
    float4 diffuse;
    float4 specular;
    float radius;           // always 100: where the light has half its strength
};

struct Surface
{
    float4 ambient;         // of the material file
    float4 diffuse;
    float4 emissive;
    float4 specular;
    float shininess;
};

float4x4 worldMatrix;       // row vectors: a point is multiplied from the left
float4x4 viewMatrix;
float4x4 projectionMatrix;
float4x4 worldInverseTransposeMatrix; // always the identity, so normals are turned without it
Light lights;
Surface material;
float4 globalAmbient;       // always 0.9 of each
float3 cameraPos;           // Graphic::CameraPos
texture colorMapTexture;    // white where the material has none

float PF;                   // fog begins there, Graphic::SetFog ...
float PB;                   // ... and is all there is from here; none if it is not beyond PF
float modR, modG, modB, modA; // 0 to 255: the material's modulation colour
float addR, addG, addB, addA; // 0 to 255: its additive colour
float time;                 // length of the last frame (unit: seconds); not used here

static const float3 AmbientShare = float3(0.22, 0.33, 0.46); // what comes down from above is blue
static const float LampReach = 10.0;
static const float3 RimColour = float3(0.16, 0.42, 0.55); // the water shines past edges
static const float RimDepth = 2.5; // of those near the plane z = 0, where the game is
static const float3 FogColour = float3(0.010, 0.050, 0.100);

sampler ColourMap = sampler_state
{
    Texture = <colorMapTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = Linear;
    AddressU = Wrap;
    AddressV = Wrap;
};

struct Vertex
{
    float4 position : POSITION;
    float3 normal : NORMAL;
    float4 colour : COLOR0; // white in model files
    float2 uv : TEXCOORD0;
};

struct Pixel
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
    float3 world : TEXCOORD1;
    float3 normal : TEXCOORD2;
    float depth : TEXCOORD3; // distance from the eye, along the view
};

// Right under every scale, also one that differs by axis or mirrors, where the matrix itself would
// tilt the normal.
float3 TurnNormal(float3 normal)
{
    float3 x = worldMatrix[0].xyz, y = worldMatrix[1].xyz, z = worldMatrix[2].xyz;
    float3 turned = normal.x * cross(y, z) + normal.y * cross(z, x) + normal.z * cross(x, y);
    return dot(x, cross(y, z)) < 0 ? -turned : turned;
}

Pixel PlaceVertex(Vertex vertex)
{
    Pixel pixel;
    float4 world = mul(float4(vertex.position.xyz, 1), worldMatrix);
    float4 seen = mul(world, viewMatrix);
    pixel.position = mul(seen, projectionMatrix);
    pixel.colour = vertex.colour;
    pixel.uv = vertex.uv;
    pixel.world = world.xyz;
    pixel.normal = TurnNormal(vertex.normal);
    pixel.depth = seen.z;
    return pixel;
}

// A length of 0 stays 0.
float3 Direction(float3 v)
{
    float square = dot(v, v);
    return square > 0 ? v * rsqrt(square) : v;
}

float4 Phong(Pixel pixel) : COLOR0
{
    float4 texel = tex2D(ColourMap, pixel.uv) * pixel.colour;

    float3 toLight = lights.pos - pixel.world;
    float away = length(toLight) / LampReach;
    float strength = 1 / (1 + away * away + 0.6 * pow(away, 4));

    float3 normal = Direction(pixel.normal);
    float3 light = Direction(toLight);
    float facing = dot(normal, light);
    float3 mirrored = 2 * facing * normal - light;
    float shine = saturate(dot(mirrored, Direction(cameraPos - pixel.world)));
    float gloss = facing > 0 ? pow(max(shine, 0.0001), max(material.shininess, 0.0001)) : 0;

    float3 above = globalAmbient.rgb * AmbientShare * (0.75 + 0.35 * normal.y);
    float3 lit = material.emissive.rgb
        + material.ambient.rgb * (above + lights.ambient.rgb * strength)
        + material.diffuse.rgb * lights.diffuse.rgb * (saturate(facing) * strength);
    float edge = 1 - saturate(dot(normal, Direction(cameraPos - pixel.world)));
    float rim = edge * edge * edge * saturate(1 - abs(pixel.world.z) / RimDepth);
    float3 colour = texel.rgb * lit + RimColour * rim
        + material.specular.rgb * lights.specular.rgb * (gloss * strength);
    bool unlit = !any(material.ambient) && !any(material.diffuse) && !any(material.emissive)
        && !any(material.specular);
    if (unlit)
        colour = texel.rgb;

    float4 result = float4(saturate(colour), texel.a);
    result = result * float4(modR, modG, modB, modA) / 255 + float4(addR, addG, addB, addA) / 255;
    float fog = PB > PF ? saturate((pixel.depth - PF) / (PB - PF)) : 0;
    result.rgb = lerp(saturate(result.rgb), FogColour, fog);
    return result;
}

technique PhongLighting
{
    pass P0
    {
        VertexShader = compile vs_3_0 PlaceVertex();
        PixelShader = compile ps_3_0 Phong();
    }
}
