#define TILES 8.0f
#define GROUND(n)                                        \
    texture Ground##n;                                   \
    sampler GroundSampler##n = sampler_state {           \
        texture = <Ground##n>;                           \
        magfilter = LINEAR; minfilter = LINEAR;          \
        mipfilter = LINEAR; AddressU = mirror; AddressV = mirror; };
#define READ(n, uv) tex2D(GroundSampler##n, (uv))
