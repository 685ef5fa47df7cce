// SPDX-License-Identifier: MIT
//
// Which words mean what: the tables of hlsl_rewrite.hpp.
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include <algorithm>
#include <set>

namespace VornPlatform {

namespace {

using WordSet = std::set<std::string_view>;

// Keywords of HLSL that came after Direct3D 9, where they are ordinary names. Those of GLSL are
// dealt with when GLSL is written.
const WordSet& LaterKeywords() {
    static const WordSet words{"unorm",
                               "snorm",
                               "precise",
                               "groupshared",
                               "linear",
                               "centroid",
                               "nointerpolation",
                               "noperspective",
                               "sample",
                               "layout",
                               "globallycoherent",
                               "point",
                               "line",
                               "triangle",
                               "lineadj",
                               "triangleadj",
                               "PointStream",
                               "LineStream",
                               "TriangleStream",
                               "InputPatch",
                               "OutputPatch",
                               "Buffer",
                               "string",
                               "texture",
                               "min16float",
                               "min10float",
                               "min16int",
                               "min12int",
                               "min16uint",
                               "SamplerState",
                               "float16_t",
                               "SamplerComparisonState",
                               "Texture1D",
                               "Texture1DArray",
                               "Texture2D",
                               "Texture2DArray",
                               "Texture3D",
                               "TextureCube",
                               "TextureCubeArray",
                               "Texture2DMS",
                               "Texture2DMSArray",
                               "RWTexture1D",
                               "RWTexture1DArray",
                               "RWTexture2D",
                               "RWTexture2DArray",
                               "RWTexture3D",
                               "RWBuffer",
                               "StructuredBuffer",
                               "ByteAddressBuffer",
                               "RWStructuredBuffer",
                               "RWByteAddressBuffer",
                               "AppendStructuredBuffer",
                               "SubpassInput",
                               "ConsumeStructuredBuffer",
                               "SubpassInputMS",
                               "cbuffer",
                               "tbuffer",
                               "this",
                               "namespace",
                               "class",
                               "ConstantBuffer",
                               "auto",
                               "catch",
                               "char",
                               "const_cast",
                               "enum",
                               "explicit",
                               "friend",
                               "goto",
                               "long",
                               "mutable",
                               "new",
                               "operator",
                               "private",
                               "protected",
                               "public",
                               "reinterpret_cast",
                               "short",
                               "signed",
                               "sizeof",
                               "static_cast",
                               "template",
                               "throw",
                               "try",
                               "typename",
                               "union",
                               "using",
                               "virtual",
                               "shared",
                               "volatile",
                               "extern",
                               "packoffset",
                               "dword",
                               "main",
                               "vector",
                               "matrix",
                               "shader_main",
                               "interface",
                               "pass",
                               "technique",
                               "gl_in"};
    return words;
}

const WordSet& Intrinsics() {
    static const WordSet words{"abs",         "acos",
                               "all",         "any",
                               "asin",        "atan",
                               "atan2",       "ceil",
                               "clamp",       "clip",
                               "cos",         "cosh",
                               "cross",       "ddx",
                               "ddy",         "degrees",
                               "determinant", "distance",
                               "dot",         "dst",
                               "exp",         "exp2",
                               "faceforward", "floor",
                               "fmod",        "frac",
                               "frexp",       "fwidth",
                               "isfinite",    "isinf",
                               "isnan",       "ldexp",
                               "length",      "lerp",
                               "lit",         "log",
                               "log10",       "log2",
                               "max",         "min",
                               "modf",        "mul",
                               "normalize",   "pow",
                               "radians",     "reflect",
                               "refract",     "round",
                               "rsqrt",       "saturate",
                               "sign",        "sin",
                               "sincos",      "sinh",
                               "step",        "sqrt",
                               "smoothstep",  "tan",
                               "tanh",        "transpose",
                               "trunc",       "D3DCOLORtoUBYTE4"};
    return words;
}

struct Helper {
    std::string_view name, text;
};

// `$` stands for float, float2, float3 and float4.
constexpr Helper Helpers[] = {
    {"hx_tex1D", "float4 hx_tex1D(sampler2D s, float x) { return tex2D(s, float2(x, 0)); } "
                 "float4 hx_tex1D(sampler2D s, float x, float a, float b) "
                 "{ return tex2Dgrad(s, float2(x, 0), float2(a, 0), float2(b, 0)); }"},
    {"hx_tex1Dgrad", "float4 hx_tex1Dgrad(sampler2D s, float x, float a, float b) "
                     "{ return tex2Dgrad(s, float2(x, 0), float2(a, 0), float2(b, 0)); }"},
    {"hx_tex1Dlod", "float4 hx_tex1Dlod(sampler2D s, float4 x) "
                    "{ return tex2Dlod(s, float4(x.x, 0, 0, x.w)); }"},
    {"hx_tex1Dbias", "float4 hx_tex1Dbias(sampler2D s, float4 x) "
                     "{ return tex2Dbias(s, float4(x.x, 0, 0, x.w)); }"},
    {"hx_tex1Dproj", "float4 hx_tex1Dproj(sampler2D s, float4 x) "
                     "{ return tex2D(s, float2(x.x / x.w, 0)); }"},
    {"hx_texCUBEproj", "float4 hx_texCUBEproj(samplerCUBE s, float4 x) "
                       "{ return texCUBE(s, x.xyz / x.w); }"},
    {"hx_ldexp", "$ hx_ldexp($ x, $ e) { return x * exp2(e); }"},
    {"hx_frexp", "$ hx_frexp($ x, out $ e) { e = x == 0 ? 0 : floor(log2(abs(x))) + 1; "
                 "return x * exp2(-e); }"},
    {"hx_fmod", "$ hx_fmod($ x, $ y) { return x - y * trunc(x / y); }"},
    // A power, whatever the intrinsic of the compiler takes it for.
    {"hx_lit", "float4 hx_lit(float l, float h, float m) "
               "{ return float4(1, max(l, 0), l < 0 || h < 0 ? 0 : pow(h, m), 1); }"},
    {"hx_set2", "void hx_set2(out float a, out float b, float2 v) { a = v.x; b = v.y; }"},
    {"hx_set3", "void hx_set3(out float a, out float b, out float c, float3 v) "
                "{ a = v.x; b = v.y; c = v.z; }"},
    {"hx_set4", "void hx_set4(out float a, out float b, out float c, out float d, float4 v) "
                "{ a = v.x; b = v.y; c = v.z; d = v.w; }"},
};

std::string ForType(std::string_view text, std::string_view type) {
    std::string result;
    for (const char c : text)
        if (c == '$')
            result += type;
        else
            result += c;
    return result + " ";
}

} // namespace

std::string SafeName(const std::string& name) {
    const bool isOurs = name.starts_with("hl_") || name.starts_with("hx_") ||
                        name.starts_with("d9_") || name.starts_with("vp_") ||
                        name.starts_with("gl_");
    return isOurs || LaterKeywords().contains(name) ? "hl_" + name : name;
}

std::string FunctionName(const std::string& name) {
    return "hl_" + name;
}

bool IsIntrinsic(std::string_view name) {
    return Intrinsics().contains(name) || SampledKind(name).has_value();
}

std::optional<SamplerKind> SampledKind(std::string_view function) {
    constexpr std::pair<std::string_view, SamplerKind> Kinds[] = {{"tex1D", SamplerKind::Flat},
                                                                  {"tex2D", SamplerKind::Flat},
                                                                  {"tex3D", SamplerKind::Volume},
                                                                  {"texCUBE", SamplerKind::Cube}};
    constexpr std::string_view Endings[] = {"", "lod", "bias", "proj", "grad"};
    if (function.starts_with("hx_"))
        function.remove_prefix(3);
    for (const auto& [name, kind] : Kinds)
        if (function.starts_with(name) &&
            std::find(std::begin(Endings), std::end(Endings), function.substr(name.size())) !=
                std::end(Endings))
            return kind;
    return std::nullopt;
}

std::string HelpersFor(const Words& words) {
    std::set<std::string_view> used;
    for (const Word& word : words)
        if (word.text.starts_with("hx_"))
            used.insert(word.text);
    std::string text;
    for (const Helper& helper : Helpers) {
        if (!used.contains(helper.name))
            continue;
        const bool isMany = helper.text.find('$') != std::string_view::npos;
        for (const std::string_view type : {"float", "float2", "float3", "float4"}) {
            text += ForType(helper.text, type);
            if (!isMany)
                break;
        }
    }
    return text;
}

} // namespace VornPlatform
