// No shaders at all.
texture Image;
bool Blends = true;

technique Blend
{
    pass P0
    {
        VertexShader = NULL;
        PixelShader  = NULL;

        Lighting       = FALSE;
        SpecularEnable = FALSE;
        FogEnable      = FALSE;
        ShadeMode      = Gouraud;
        DitherEnable   = TRUE;
        CullMode       = NONE;
        ZEnable        = FALSE;
        StencilEnable  = FALSE;
        Clipping       = TRUE;
        ColorWriteEnable = RED|GREEN|BLUE|ALPHA;

        AlphaBlendEnable = <Blends>;
        SrcBlend         = SRCALPHA;
        DestBlend        = INVSRCALPHA;
        BlendOp          = ADD;

        Texture[0]   = <Image>;
        MinFilter[0] = LINEAR;
        MagFilter[0] = LINEAR;
        MipFilter[0] = POINT;

        ColorOp[0]   = MODULATE2X;
        ColorArg1[0] = TEXTURE;
        ColorArg2[0] = DIFFUSE;
        AlphaOp[0]   = SELECTARG1;
        AlphaArg1[0] = DIFFUSE;
        TexCoordIndex[0] = 0;
        ColorOp[1]   = DISABLE;
        AlphaOp[1]   = DISABLE;
    }
}
technique Wire
{
    pass P0
    {
        FillMode = WIREFRAME;
        AlphaBlendEnable = FALSE;
        Texture[0] = NULL;
    }
}
