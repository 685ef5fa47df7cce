// Point particles that rise, shrink and fade. The texture coordinate holds their life in seconds.
float ElapsedTime = 0.0;
float StartSize = 8.0;
float3 Velocity = { 0.0, 0.25, 0.0 };

struct PS_Input { float4 Position : POSITION0; float4 Color : COLOR0; float Size : PSIZE0; };

PS_Input ParticleVS(float3 position : POSITION0, float4 color : COLOR0, float life : TEXCOORD0)
{
    PS_Input Output;
    float left = saturate(1 - ElapsedTime / life);
    Output.Position = float4(position + Velocity * ElapsedTime, 1);
    Output.Size = StartSize * left;
    Output.Color = color * left;
    return Output;
}
float4 ParticlePS(PS_Input input) : COLOR { return input.Color; }

technique Particles
{
    pass P0
    {
        PointSpriteEnable = TRUE;
        AlphaBlendEnable = TRUE;
        SrcBlend = One; DestBlend = One;
        ZWriteEnable = FALSE;
        VertexShader = compile vs_1_1 ParticleVS();
        PixelShader = compile ps_1_1 ParticlePS();
    }
}
