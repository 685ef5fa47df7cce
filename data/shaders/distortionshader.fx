// SPDX-License-Identifier: MIT
//
// The last pass of a frame: scene, beams and particles become one picture. The square covers the
// screen. docs/shaders.md has all names.
//
// Beams and particles shine through: black adds nothing, and nothing gets brighter than white.
// With `distortion`, a shock wave runs out of `center`, and the beams tremble.

float4x4 worldMatrix;       // row vectors: a point is multiplied from the left
float4x4 viewMatrix;
float4x4 projectionMatrix;
texture ModelTexture;       // the three targets of Graphic, of one size
texture BeamTexture;
texture ParticlesTexture;
float Time;                 // 0 to 0.7, then again (unit: seconds)
float TargetTime;           // 0 to 0.07, then again (unit: seconds)
bool distortion;
float2 center;              // 0 to 1, from the top left

static const float WaveTime = 0.7;
static const float WaveReach = 1.3;     // (unit: heights of the screen)
static const float WaveWidth = 0.15;
static const float WaveStrength = 0.04;
static const float TrembleTime = 0.07;
static const float Tremble = 0.002;
static const float Aspect = 4.0 / 3.0;  // the rectangle is 800 by 600

sampler Scene = sampler_state
{
    Texture = <ModelTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = None;
    AddressU = Clamp;
    AddressV = Clamp;
};

sampler Beams = sampler_state
{
    Texture = <BeamTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = None;
    AddressU = Clamp;
    AddressV = Clamp;
};

sampler Particles = sampler_state
{
    Texture = <ParticlesTexture>;
    MinFilter = Linear;
    MagFilter = Linear;
    MipFilter = None;
    AddressU = Clamp;
    AddressV = Clamp;
};

struct Corner
{
    float4 position : POSITION;
    float4 colour : COLOR0;
    float2 uv : TEXCOORD0;
};

struct Pixel
{
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
};

Pixel PlaceCorner(Corner corner)
{
    Pixel pixel;
    float4 world = mul(float4(corner.position.xyz, 1), worldMatrix);
    pixel.position = mul(mul(world, viewMatrix), projectionMatrix);
    pixel.uv = corner.uv;
    return pixel;
}

// Where the picture that the wave shows at `uv` comes from: nearer to the centre, under a ring that
// grows and fades.
float2 Bent(float2 uv)
{
    float2 way = (uv - center) * float2(Aspect, 1);
    float age = saturate(Time / WaveTime);
    float ring = saturate(1 - abs(length(way) - age * WaveReach) / WaveWidth);
    float2 outwards = way / max(length(way), 0.0001);
    return uv - outwards * float2(1 / Aspect, 1) * (ring * (1 - age) * WaveStrength);
}

float4 Compose(Pixel pixel) : COLOR0
{
    // Pixels have their centres at whole numbers and texels at halves: without this half step the
    // picture would blur.
    float2 uv = pixel.uv + 0.5 * float2(ddx(pixel.uv.x), ddy(pixel.uv.y));
    float2 beamUv = uv;
    float pulse = 1;
    if (distortion)
    {
        uv = Bent(uv);
        float turn = TargetTime / TrembleTime * 6.2831853;
        beamUv = uv + Tremble * float2(sin(turn + uv.y * 40), cos(turn + uv.x * 40));
        pulse = 0.9 + 0.1 * cos(turn);
    }
    float3 scene = tex2Dlod(Scene, float4(uv, 0, 0)).rgb;
    float3 beams = tex2Dlod(Beams, float4(beamUv, 0, 0)).rgb * pulse;
    float3 particles = tex2Dlod(Particles, float4(uv, 0, 0)).rgb;
    return float4(1 - (1 - scene) * (1 - beams) * (1 - particles), 1);
}

technique TransformTech
{
    pass P0
    {
        VertexShader = compile vs_3_0 PlaceCorner();
        PixelShader = compile ps_3_0 Compose();
    }
}
