/******************************************************************************
    A lit surface with the annotations that tools read.
******************************************************************************/
float Script : STANDARDSGLOBAL <
    string UIWidget = "none";
    string ScriptClass = "object";
    string ScriptOrder = "standard";
    string ScriptOutput = "color";
    string Script = "Technique=Technique?Main:Flat;";
> = 0.8; // version #

//// UN-TWEAKABLES - AUTOMATICALLY-TRACKED TRANSFORMS ////////////////
float4x4 WorldITXf : WorldInverseTranspose < string UIWidget="None"; >;
float4x4 WvpXf : WorldViewProjection < string UIWidget="None"; >;
float4x4 WorldXf : World < string UIWidget="None"; >;
float4x4 ViewIXf : ViewInverse < string UIWidget="None"; >;

//// TWEAKABLE PARAMETERS ////////////////////
/// Point Lamp 0 ////////////
float3 Lamp0Pos : Position <
    string Object = "PointLight0";
    string UIName =  "Lamp 0 Position";
    string Space = "World";
> = {0.0f,0.0f,-200.0f};
float3 Lamp0Color : Specular <
    string UIName =  "Lamp 0";
    string Object = "Pointlight0";
    string UIWidget = "Color";
> = {1.0f,1.0f,1.0f};
float3 AmbiColor : Ambient < string UIName = "Ambient Light"; string UIWidget = "Color"; > = {0.07f,0.07f,0.07f};
float Ks < string UIWidget = "slider"; float UIMin = 0.0; float UIMax = 1.0; float UIStep = 0.05; string UIName = "Specular"; > = 0.0;
float Kd < string UIWidget = "slider"; string UIName = "Diffuse"; > = 0.6;
float SpecExpon : SpecularPower = 55.0;
float3 SurfaceColor : DIFFUSE < string UIName = "Surface"; string UIWidget = "Color"; > = {0.9f, 0.5f, 0.2f};

/* data from application vertex buffer */
struct appdata {
    float3 Position : POSITION;
    float4 UV       : TEXCOORD0;
    float4 Normal   : NORMAL;
};
/* data passed from vertex shader to pixel shader */
struct vertexOutput {
    float4 HPosition   : POSITION;
    float2 UV          : TEXCOORD0;
    // The following values are passed in "World" coordinates
    float3 LightVec    : TEXCOORD1;
    float3 WorldNormal : TEXCOORD2;
    float3 WorldView   : TEXCOORD5;
};

vertexOutput std_VS(appdata IN) {
    vertexOutput OUT = (vertexOutput)0;
    OUT.WorldNormal = mul(IN.Normal,WorldITXf).xyz;
    float4 Po = float4(IN.Position.xyz,1);
    float3 Pw = mul(Po,WorldXf).xyz;
    OUT.LightVec = (Lamp0Pos - Pw);
#ifdef FLIP_TEXTURE_Y
    OUT.UV = float2(IN.UV.x,(1.0-IN.UV.y));
#else /* !FLIP_TEXTURE_Y */
    OUT.UV = IN.UV.xy;
#endif /* !FLIP_TEXTURE_Y */
    OUT.WorldView = normalize(ViewIXf[3].xyz - Pw);
    OUT.HPosition = mul(Po,WvpXf);
    return OUT;
}

void phong_shading(vertexOutput IN, float3 LightColor, float3 Nn, float3 Ln, float3 Vn,
                   out float3 DiffuseContrib, out float3 SpecularContrib)
{
    float3 Hn = normalize(Vn + Ln);
    float4 litV = lit(dot(Ln,Nn),dot(Hn,Nn),SpecExpon);
    DiffuseContrib = litV.y * Kd * LightColor + AmbiColor / SurfaceColor;
    SpecularContrib = litV.y * litV.z * Ks * LightColor;
}

float4 std_PS(vertexOutput IN) : COLOR {
    float3 diffContrib;
    float3 specContrib;
    float3 Ln = normalize(IN.LightVec);
    float3 Vn = normalize(IN.WorldView);
    float3 Nn = normalize(IN.WorldNormal);
    phong_shading(IN,Lamp0Color,Nn,Ln,Vn,diffContrib,specContrib);
    float3 result = specContrib+(SurfaceColor*diffContrib);
    return float4(result,1);
}
float4 flat_PS() : COLOR { return float4(Kd.xxx, 1); }

technique Main <
    string Script = "Pass=p0;";
> {
    pass p0 <
        string Script = "Draw=geometry;";
    > {
        VertexShader = compile vs_3_0 std_VS();
        ZEnable = true;
        ZWriteEnable = true;
        ZFunc = LessEqual;
        AlphaBlendEnable = false;
        CullMode = None;
        PixelShader = compile ps_3_0 std_PS();
    }
}
technique Flat {
    pass p0 {
        VertexShader = compile vs_2_0 std_VS();
        PixelShader = compile ps_2_0 flat_PS();
    }
}
/////////////////////////////////////// eof //
