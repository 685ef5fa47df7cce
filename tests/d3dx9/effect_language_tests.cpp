// SPDX-License-Identifier: MIT
//
// The language of shaders: each case is a function of the coordinates, drawn and compared with the
// same formula in double, pixel by pixel. Wrong compilers are silent, so the picture decides.
#include "tests/d3dx9/effect_picture.hpp"

namespace Tests {
namespace {

struct LanguageCase {
    const char* name;
    const char* globals;
    const char* body; // of `float4 Value(float2 t)`
    Color (*expected)(double u, double v);
    void (*set)(ID3DXEffect*) = nullptr;
    bool pixelsOnly = false;
};
void PrintTo(const LanguageCase& c, std::ostream* out) {
    *out << c.name;
}

double Fract(double x) {
    return x - std::floor(x);
}
double Smooth(double a, double b, double x) {
    const double k = std::clamp((x - a) / (b - a), 0., 1.);
    return k * k * (3 - 2 * k);
}
/// What SetCounting gives a matrix: 1/32, 2/32, ... row by row.
double M(int row, int column) {
    return (row * 4 + column + 1) / 32.;
}
D3DXMATRIX Counting() {
    D3DXMATRIX m;
    for (int i = 0; i < 16; ++i)
        m.m[i / 4][i % 4] = static_cast<float>(M(i / 4, i % 4));
    return m;
}
void SetCounting(ID3DXEffect* effect) {
    const D3DXMATRIX m = Counting();
    for (const char* name : {"M", "Rows", "Tall", "Wide", "Low", "Narrow", "Small"})
        effect->SetMatrix(name, &m);
}
/// (a, b, c, d) M, and M (a, b, c, d).
double RowTimes(const Color& v, int column) {
    return v[0] * M(0, column) + v[1] * M(1, column) + v[2] * M(2, column) + v[3] * M(3, column);
}
double TimesColumn(int row, const Color& v) {
    return v[0] * M(row, 0) + v[1] * M(row, 1) + v[2] * M(row, 2) + v[3] * M(row, 3);
}

const LanguageCase arithmetic[] = {
    {"RemaindersHaveTheSignOfTheDividend", "",
     "return float4(fmod(t.x * 5 - 2.5, 1.0), (t.y * 7 - 3.5) % 2, "
     "fmod(2.5 - t.x * 5, -0.75), fmod(t, float2(0.3, 0.2)).y * 4) * float4(0.5, 0.25, 0.5, 1) + "
     "float4(0.5, 0.5, 0.5, 0);",
     [](double u, double v) {
         return Color{std::fmod(u * 5 - 2.5, 1) / 2 + .5, std::fmod(v * 7 - 3.5, 2) / 4 + .5,
                      std::fmod(2.5 - u * 5, -.75) / 2 + .5, std::fmod(v, .2) * 4};
     }},
    {"IntegersAreCutTowardsZero", "",
     "int n = int(t.x * 16) - 8; int k = (int)(t.y * 16) - 8;\n"
     "float cut = (int)(t.x * 4 - 2);\n"
     "return float4(n / 3 + 4, k % 3 + 4, cut + 4, n / 2 * 2 == n) / 8;",
     [](double u, double v) {
         const int n = static_cast<int>(u * 16) - 8, k = static_cast<int>(v * 16) - 8;
         const int cut = static_cast<int>(u * 4 - 2);
         return Color{(n / 3 + 4) / 8., (k % 3 + 4) / 8., (cut + 4) / 8., n % 2 == 0 ? .125 : 0};
     }},
    {"ValuesConvertWithoutBeingAsked", "",
     "float3 cut = float4(t, 0.25, 1);\nfloat one = cut; float4 all = 0.5; int n = 2.75;\n"
     "bool yes = 0.1; half h = t.y; double d = 0.25; float2 both = (float2)t.x; half3 hs = 0.125;\n"
     "float3 made = float3(both, n);\n"
     "return float4(one * all.w, h * d, made.z * made.y / 4 + yes * 0.25, hs.z + cut.b + "
     "D3DCOLORtoUBYTE4(float4(0.2, 0.5, 0.1, 1)).z * 0.001);",
     [](double u, double v) {
         return Color{u / 2, v / 4, u / 2 + .25, .426};
     }},
    {"ChoicesAndComparisonsWorkByComponent", "",
     "float3 a = float3(t, 0.5) > 0.4 ? float3(0.2, 0.4, 0.6) : float3(1, 0.9, 0.8);\n"
     "float2 mask = t >= 0.25 && t < 0.75;\nbool2 low = t < 0.5;\n"
     "float k = any(low) * 0.25 + all(low) * 0.5;\n"
     "return float4(a.xy * 0.5 + mask * 0.5, a.z + dot(!low, float2(0.1, 0.2)), k);",
     [](double u, double v) {
         const auto middle = [](double x) { return x >= .25 && x < .75 ? .5 : 0; };
         const bool left = u < .5, top = v < .5;
         return Color{(u > .4 ? .2 : 1) / 2 + middle(u), (v > .4 ? .4 : .9) / 2 + middle(v),
                      .6 + (left ? 0 : .1) + (top ? 0 : .2),
                      (left || top ? .25 : 0) + (left && top ? .5 : 0)};
     }},
    {"NumbersAreTruthsWhereTheyAreNotZero", "int2 Pair = { 2, 0 };",
     "return float4(any(step(0.5, t)), all(Pair + 1), all(Pair) + any(0.25), any(Pair) && t.x) * "
     "float4(0.5, 0.5, 0.25, 0.5);",
     [](double u, double v) {
         return Color{u > .5 || v > .5 ? .5 : 0, .5, .25, .5};
     }},
    {"FunctionsThatShapeNumbers", "",
     "float s, c;\nsincos(t.x * 6, s, c);\nfloat whole;\nfloat part = modf(t.y * 4 - 2, whole);\n"
     "float4 r = float4(s * 0.5 + 0.5, c * 0.5 + 0.5, part + 1, whole * 0.25 + 0.5) * 0.5;\n"
     "r.x += lerp(0.1, 0.4, t.y) + sign(t.x - 0.5) * 0.05;\n"
     "r.y += smoothstep(0.2, 0.7, t.x) * 0.25 + step(0.5, t.y) * 0.25;\n"
     "r.z += frac(t.x * 3 - 1.5) * 0.4; r.w += saturate(t.y * 3 - 1) * 0.2 + round(t.x * 4) * "
     "0.05;\n"
     "return r - 0.1 * trunc(t.x * 4 - 2) * clamp(t.y, 0.2, 0.4);",
     [](double u, double v) {
         const double x = v * 4 - 2, shift = .1 * std::trunc(u * 4 - 2) * std::clamp(v, .2, .4);
         return Color{std::sin(u * 6) / 4 + .25 + .1 + .3 * v + (u < .5 ? -.05 : .05) - shift,
                      std::cos(u * 6) / 4 + .25 + Smooth(.2, .7, u) / 4 + (v < .5 ? 0 : .25) -
                          shift,
                      (x - std::trunc(x) + 1) / 2 + Fract(u * 3 - 1.5) * .4 - shift,
                      (std::trunc(x) / 4 + .5) / 2 + std::clamp(v * 3 - 1, 0., 1.) / 5 +
                          std::round(u * 4) / 20 - shift};
     }},
    {"PowersAndAngles", "",
     "float4 r = float4(pow(t.x, 2.2), exp(-t.y), exp2(-t.x), sqrt(t.y)) * 0.5;\n"
     "r += float4(log2(1 + t.y), log(1 + t.x), log10(1 + t.y), rsqrt(1 + t.x)) * 0.25;\n"
     "r += float4(atan2(t.y - 0.5, t.x - 0.5) / 6.2832, asin(t.x) / 4, acos(t.y) / 4, "
     "atan(t.x * 2) / 4) * 0.25;\n"
     "return r + float4(radians(t.x * 30), degrees(t.y) / 300, tanh(t.x) / 8, ldexp(t.y, -3));",
     [](double u, double v) {
         return Color{
             std::pow(u, 2.2) / 2 + std::log2(1 + v) / 4 + std::atan2(v - .5, u - .5) / 6.2832 / 4 +
                 u * 30 * M_PI / 180,
             std::exp(-v) / 2 + std::log(1 + u) / 4 + std::asin(u) / 16 + v * 180 / M_PI / 300,
             std::exp2(-u) / 2 + std::log10(1 + v) / 4 + std::acos(v) / 16 + std::tanh(u) / 8,
             std::sqrt(v) / 2 + .25 / std::sqrt(1 + u) + std::atan(u * 2) / 16 + v / 8};
     }},
    // Direct3D 9 has them as instructions that take the absolute value and give no NaN.
    {"RootsAndPowersTakeTheAbsoluteValue", "float Exponent = 2; float3 Nothing = 0;",
     "float3 n = normalize(Nothing * t.x);\n"
     "return float4(pow(t.x - 0.5, Exponent) * 2 + n.x, pow(-t.y, 2), 0.5 * rsqrt(-1 - t.x), "
     "log2(-1 - t.y));",
     [](double u, double v) {
         return Color{(u - .5) * (u - .5) * 2, v * v, .5 / std::sqrt(1 + u), std::log2(1 + v)};
     }},
    {"VectorsAsLightsNeedThem", "",
     "float3 n = normalize(float3(t - 0.5, 1)), i = normalize(float3(0.3, -0.2, -1));\n"
     "float3 mirrored = reflect(i, n), bent = refract(i, n, 0.75), past = refract(i, float3(-1, 0, "
     "0), 5);\n"
     "float4 shine = lit(t.x - 0.3, t.y, 3), none = lit(0.5, t.y - 0.5, 1);\n"
     "float4 d = dst(float4(1, t.x, t.y, 1), float4(1, t.y, 0, t.x));\n"
     "float3 side = cross(n, i) + faceforward(n, i, n);\n"
     "return float4(mirrored.x + shine.y * 0.3, bent.y + shine.z * 0.3 + past.x, d.y + none.z, "
     "d.w * side.z) * 0.5 + float4(0.3, 0.3, d.z * 0.25, distance(t, 0.5) * 0.2 + length(t) * "
     "0.2);",
     [](double u, double v) {
         const double nl = std::sqrt((u - .5) * (u - .5) + (v - .5) * (v - .5) + 1);
         const double n[] = {(u - .5) / nl, (v - .5) / nl, 1 / nl}, il = std::sqrt(1.13);
         const double i[] = {.3 / il, -.2 / il, -1 / il};
         const double dot = n[0] * i[0] + n[1] * i[1] + n[2] * i[2];
         const double k = .75 * dot + std::sqrt(1 - .5625 * (1 - dot * dot));
         const double diffuse = std::max(u - .3, 0.), shine = u < .3 ? 0 : v * v * v;
         return Color{(i[0] - 2 * dot * n[0] + diffuse * .3) / 2 + .3,
                      (.75 * i[1] - k * n[1] + shine * .3) / 2 + .3,
                      (u * v + std::max(v - .5, 0.)) / 2 + v / 4,
                      u * (n[0] * i[1] - n[1] * i[0] + n[2]) / 2 + std::hypot(u - .5, v - .5) / 5 +
                          std::hypot(u, v) / 5};
     }},
    {"LoopsEndWhereTheyAreTold", "int Steps = 5;",
     "float sum = 0, k = 0;\n"
     "for (int i = 0; i < 10; i++) { if (i == 3) continue; if (i > t.x * 10) break; sum += i; }\n"
     "[unroll] for (int j = 0; j < 4; ++j) for (int i = j; i < 4; ++i) if (i % 2) k += 0.125;\n"
     "int n = 0; [loop] while (n < Steps) { n += 2; if (n > 3) { if (t.y > 0.5) break; } }\n"
     "float w = 1; do { w *= 0.5; } while (w > t.x + 0.01);\n"
     "return float4(sum / 50, k, n / 8.0, w);",
     [](double u, double v) {
         double sum = 0, w = 1;
         for (int i = 0; i < 10 && i <= u * 10; ++i)
             sum += i == 3 ? 0 : i;
         do
             w /= 2;
         while (w > u + .01);
         return Color{sum / 50, .75, v > .5 ? .5 : .75, w};
     }},
    {"FunctionsTakeAndGive", R"(
float Scaled(float x, float k = 0.5);
float Twice(float x) { return x * 2; }
float2 Twice(float2 x) { return x * 4; }
void Split(in float2 t, out float a, inout float b) { a = t.x; b += t.y; if (t.x > 0.5) return; b -= t.y * 0.5; }
float Early(float x) { if (x < 0.25) return 0.1; else if (x < 0.5) return 0.2; return 0.3; }
float Scaled(float x, float k) { return x * k; })",
     "float a, b = 0.25;\nSplit(t, a, b);\n"
     "return float4(a * Scaled(1), b * Scaled(1, 0.75), Twice(0.1) + Twice(t * 0.1).y, "
     "Early(t.x));",
     [](double u, double v) {
         return Color{u / 2, (.25 + v * (u > .5 ? 1 : .5)) * .75, .2 + v * .4,
                      u < .25  ? .1
                      : u < .5 ? .2
                               : .3};
     }},
    {"FunctionsShareNamesWithThoseOfTheLanguage", R"(
float saturate(float x, float most) { return min(saturate(x), most); }
float min(float a, float b, float c) { return min(a, min(b, c)); }
float3 lerp(float3 a, float3 b) { return lerp(a, b, 0.25); })",
     "return float4(saturate(t.x * 2, 0.75), min(t.x, t.y, 0.5), lerp(t.xyx, 1).y, saturate(t.x));",
     [](double u, double v) {
         return Color{std::min(u * 2, .75), std::min({u, v, .5}), v * .75 + .25, u};
     }},
    {"SwizzlesAndMasks", "",
     "float4 c = float4(t, 0.25, 1); c.rg = c.gr; c.wz *= float2(0.5, 2); float s = t.x;\n"
     "c.z += 0.125; float3 spread = s.xxx; c[0] += spread.z * 0.25; return c.yxzw.bgra.rgba;",
     [](double u, double v) {
         return Color{.625, v + u / 4, u, .5};
     }},
    {"NamesThatBecameWordsLater", R"(
float3 filter = { 0.5, 0.25, 0.125 };
float mix(float a, float b) { return a * b; }
float mod(float x) { return x * 0.5; }
struct attribute { float flat, smooth; };)",
     "float sample = t.x, point = t.y, line = filter.x, input = filter.y, output = 0.75;\n"
     "float linear = mix(sample, output), triangle = mod(point), buffer = 0.1, active = 0.2;\n"
     "attribute varying; varying.flat = line; varying.smooth = input; float3 vec3 = filter;\n"
     "float precise = 0.1, centroid = 0.1, layout = 0.1, common = 0.1, shared = 0.1, snorm = 0.1;\n"
     "return float4(linear, triangle + buffer, varying.flat + active + vec3.z, varying.smooth + "
     "precise + centroid + layout + common + shared + snorm);",
     [](double u, double v) {
         return Color{u * .75, v / 2 + .1, .825, .85};
     }},
    {"OldSpellingsOfTypes", "", R"(
vector v = float4(t, 0.5, 1); vector<float, 3> three = { 0.1, 0.2, 0.3 }; matrix m = 0;
m._11_22_33_44 = 0.5; matrix<float, 2, 2> small = { 1, 2, 3, 4 }; typedef float2 coords;
coords c = mul(t, small) * 0.125; const int n = 2;
return mul(v, m) + float4(c, three.z, n * 0.1);)",
     [](double u, double v) {
         return Color{u / 2 + (u + 3 * v) / 8, v / 2 + (2 * u + 4 * v) / 8, .55, .7};
     }},
    {"MacrosBuildCode", R"(
#define SCALE(x, k) ((x) * (k))
#define NAME(a, b) a##b
#define LONG_ONE(v) \
    SCALE(v, 0.5) + \
    0.25
#if defined(SCALE) && !defined(NOT_THERE) && (3 * 2 > 5)
float NAME(Gr, ey) = 0.5; /* a comment
over lines */
#elif 1
#error not this one
#else
float Grey = 0.1;
#endif
#undef NAME
#ifdef NAME
broken
#endif)",
     "return float4(SCALE(t.x, Grey), LONG_ONE(t.y), Grey, SCALE(0.5 + 0.5, 1)); // end",
     [](double u, double v) {
         return Color{u / 2, v / 2 + .25, .5, 1};
     }},

    // Statics, arrays, structures.
    {"StaticsAreComputedAndChange", R"(
float Strength = 0.5;
static const float3 axis = normalize(float3(1, 2, 2));
static const float scaled = Strength * saturate(1.5) * 0.5;
static float total = 0.125;
static float4 mixed = float4(axis.xy * Strength, scaled, 1);
float3 Turn(float3 v) { return v.zxy; }
static const float3 turned = Turn(axis);
void Add(float x) { total += x; })",
     "Add(t.x * 0.25); Add(t.y * 0.25); mixed.z += total;\n"
     "return float4(total, mixed.y, mixed.z, turned.x + turned.y * 0.25);",
     [](double u, double v) {
         const double total = .125 + (u + v) / 4;
         return Color{total, 1. / 3, .25 + total, 2. / 3 + 1. / 12};
     }},
    {"AParameterThatAShaderWritesIsACopy", "float Brightness = 0.25; float3 Tint = { 0.5, 0, 0 };",
     "Brightness += t.x * 0.5; Tint.gb = t; Tint *= 0.5; return float4(Brightness, Tint);",
     [](double u, double v) {
         return Color{.25 + u / 2, .25, u / 2, v / 2};
     }},
    {"InitialisersMayBeFlat", R"(
struct Lamp { float3 color; float power; };
static const Lamp lamps[2] = { 1, 0, 0.5, 0.5, { 0, 1, 0 }, 0.25 };
static const float2 taps[4] = { -1, 0, 1, 0, 0, -1, 0, 1 };
const float4x4 bayer = { 1, 9, 3, 11, 13, 5, 15, 7, 4, 12, 2, 10, 16, 8, 14, 6 };
float3 Luminance = { 0.3, 0.59, 0.11 };)",
     R"(
float weights[] = { 0.125, 0.25, 0.5 }; float3 pair[2] = { t, 0.25, 0.5, t.yx };
Lamp own = { pair[0], weights[1] }; float2 sum = 0; int n = t.x * 4;
for (int i = 0; i < 4; i++) sum += taps[i] * taps[i] * weights[1];
float4 row = bayer[n];
return float4(lamps[0].color.r * lamps[0].power + lamps[1].power * t.x, row[(int)(t.y * 4)] / 17,
              dot(own.color, Luminance) + pair[1].z * 0.1, own.power + sum.y);)",
     [](double u, double v) {
         const int bayer[] = {1, 9, 3, 11, 13, 5, 15, 7, 4, 12, 2, 10, 16, 8, 14, 6};
         return Color{.5 + u / 4,
                      bayer[static_cast<int>(u * 4) * 4 + static_cast<int>(v * 4)] / 17.,
                      .3 * u + .59 * v + .11 / 4 + u / 10, .75};
     }},
    {"ArraysAndVectorsCast", "float4 Kernel[3]; struct Four { float2 a, b; };", R"(
float parts[4] = (float[4])float4(t, 0.25, 0.5); Four four = (Four)float4(t.yx, 0.1, 0.2);
Four none = (Four)0; float2 two[2] = (float2[2])float4(0.1, 0.2, t); float k[3];
for (int i = 0; i < 3; ++i) k[i] = Kernel[i].y;
return float4(parts[1] + four.b.x, four.a.x * 0.5 + none.a.y, two[1].y, k[(int)(t.x * 3)]);)",
     [](double u, double v) {
         const double kernel[] = {.2, .4, .6};
         return Color{v + .1, v / 2, v, kernel[static_cast<int>(u * 3)]};
     },
     [](ID3DXEffect* effect) {
         const float kernel[] = {0, .2f, 0, 0, 0, .4f, 0, 0, 0, .6f, 0, 0};
         EXPECT_EQ(D3D_OK, effect->SetValue("Kernel", kernel, sizeof kernel));
     }},

    // Matrices.
    {"RowsAndElementsOfAMatrix", "float4x4 M;",
     "int n = t.x * 4; return float4(M[1].z + M[n][2], M[2][3] + M._43, M._m02 + M[0].y, "
     "M[3].wzyx.x) * 0.5 + M[n].x * 0.25;",
     [](double u, double) {
         const int n = static_cast<int>(u * 4);
         return Color{(M(1, 2) + M(n, 2)) / 2 + M(n, 0) / 4, (M(2, 3) + M(3, 2)) / 2 + M(n, 0) / 4,
                      (M(0, 2) + M(0, 1)) / 2 + M(n, 0) / 4, M(3, 3) / 2 + M(n, 0) / 4};
     },
     SetCounting},
    {"IndicesAreCutToWholeNumbers", "float4x4 M; float Kernel[4] = { 0.1, 0.2, 0.3, 0.4 };", R"(
float2 i = t * 3.9; float4 own = 0; own[i.x] = 0.5;
return float4(M[i.x][i.y], M[i].y + M[i.yx].x * 0.5, Kernel[i.y] + Kernel[i], own[t.x * 3.9]);)",
     [](double u, double v) {
         const int x = static_cast<int>(u * 3.9), y = static_cast<int>(v * 3.9);
         return Color{M(x, y), M(x, 1) + M(y, 0) / 2, (x + y + 2) / 10., .5};
     },
     SetCounting},
    {"FunctionsOfMatricesWorkByComponent", "float4x4 M; float3x3 Small;", R"(
float4x4 mean = lerp(M, 1, 0.5), shifted = abs(M - 0.5) + saturate(M * 2 - t.x) + floor(M * 8) / 8;
float3x3 low = min(Small, 0.25) + max(Small, t.y) + sign(Small - 0.1) * 0.25 + pow(Small, 2);
return float4(mean._23, shifted._32 * 0.5, low._21 * 0.5, frac(M * 4)[3].z * 0.5 + clamp(M, 0.2, 0.3)._14);)",
     [](double u, double v) {
         const double small = M(1, 0), m = M(2, 1);
         return Color{(M(1, 2) + 1) / 2,
                      (std::abs(m - .5) + std::clamp(m * 2 - u, 0., 1.) + std::floor(m * 8) / 8) /
                          2,
                      (std::min(small, .25) + std::max(small, v) + .25 + small * small) / 2,
                      Fract(M(3, 2) * 4) / 2 + .2};
     },
     SetCounting},
    {"SwizzlesOfMatrices", "float4x4 M;", R"(
float3 place = M._41_42_43; float4 diagonal = M._m00_m11_m22_m33; float4x4 own = M;
own._11_21 = t; own._m33 = 0.25; own[1] = float4(0.1, 0.2, own[1].zw); own._32_23 = own._23_32;
own[2][0] += 0.125;
return float4(own._11 + place.x * 0.1, own._32 + own._12 * 0.5, own._23 + own._44, own._31 + own._22 * diagonal.y);)",
     [](double u, double) {
         return Color{u + M(3, 0) / 10, M(1, 2) + M(0, 1) / 2, M(2, 1) + .25,
                      M(2, 0) + .125 + .2 * M(1, 1)};
     },
     SetCounting},
    {"VectorTimesMatrix", "float4x4 M;", "return mul(float4(t, 0.5, 1), M) * 0.5;",
     [](double u, double v) {
         const Color c = {u, v, .5, 1};
         return Color{RowTimes(c, 0) / 2, RowTimes(c, 1) / 2, RowTimes(c, 2) / 2,
                      RowTimes(c, 3) / 2};
     },
     SetCounting},
    {"MatrixTimesVector", "float4x4 M;",
     "float4 v = float4(t, 0.5, 1), a = mul(M, v) * 0.5, b = mul(v, transpose(M)) * 0.5;\n"
     "return float4(a.xy, b.zw);",
     [](double u, double v) {
         const Color c = {u, v, .5, 1};
         return Color{TimesColumn(0, c) / 2, TimesColumn(1, c) / 2, TimesColumn(2, c) / 2,
                      TimesColumn(3, c) / 2};
     },
     SetCounting},
    {"MatrixTimesMatrix", "float4x4 M; row_major float4x4 Rows; float3x3 Small;", R"(
float4x4 square = mul(M, Rows), both = M * 0.5 + Rows * M; float3x3 three = mul(Small, (float3x3)M);
return float4(square[1][2] * t.x, both._34, three._23 * 0.5, determinant(float2x2(t, 0.25, 1)) + mul(t, t) * 0.1 + mul(2, t).x * 0.1 + mul(Small, 2)._12);)",
     [](double u, double v) {
         double square = 0, three = 0;
         for (int k = 0; k < 4; ++k)
             square += M(1, k) * M(k, 2), three += k < 3 ? M(1, k) * M(k, 2) : 0;
         return Color{square * u, M(2, 3) / 2 + M(2, 3) * M(2, 3), three / 2,
                      u - v / 4 + (u * u + v * v) / 10 + u / 5 + M(0, 1) * 2};
     },
     SetCounting},
    {"MatricesThatAreNotSquare",
     "float4x3 Tall; float3x4 Wide; float2x3 Low; float3x2 Narrow; float4x4 M;", R"(
float4 v = float4(t, 0.5, 1); float3 a = mul(v, Tall), b = mul(Wide, v); float2 c = mul(Low, v.xyz);
float2 d = mul(v.xyz, Narrow); float2x4 lw = mul(Low, Wide); float3x4 turned = transpose(Tall);
float4x3 part = (float4x3)M;
return float4(a.y + c.y, b.z + d.x, lw[1][3] + turned[2][3], Tall[3][1] + Wide._24 + part._43 + a.z) * 0.5;)",
     [](double u, double v) {
         const Color c = {u, v, .5, 1}, three = {u, v, .5, 0};
         const double lw = M(1, 0) * M(0, 3) + M(1, 1) * M(1, 3) + M(1, 2) * M(2, 3);
         return Color{(RowTimes(c, 1) + TimesColumn(1, three)) / 2,
                      (TimesColumn(2, c) + RowTimes(three, 0)) / 2, (lw + M(3, 2)) / 2,
                      (M(3, 1) + M(1, 3) + M(3, 2) + RowTimes(c, 2)) / 2};
     },
     SetCounting},
    {"RowMajorIsTheSameMatrix", "float4x4 M; row_major float4x4 Rows; column_major float3x3 Small;",
     R"(
float4 v = float4(t, 0.5, 1); float3 s = mul(v.xyz, (float3x3)Rows), r = mul(v.xyz, Small);
return float4(mul(v, Rows).x, mul(Rows, v).y, s.z - r.z + 0.5, Rows[1][3] + Rows._31) * 0.5;)",
     [](double u, double v) {
         const Color c = {u, v, .5, 1};
         return Color{RowTimes(c, 0) / 2, TimesColumn(1, c) / 2, .25, (M(1, 3) + M(2, 0)) / 2};
     },
     SetCounting},
    {"MatricesAreMadeOfRows", "float4x4 M;", R"(
float3x3 basis = float3x3(float3(t, 0), float3(0, 1, 0.5), 0.25, 0.5, 0.75);
float3x3 cut = M; float4x4 all = float4x4(M[3], M[2], M[1], t, t);
float3 a = mul(basis, float3(1, 0.5, 0)), b = mul(float3(0.5, 0.5, 1), basis);
return float4(a.x * 0.5 + cut._13, b.y * 0.5 + all._12, b.z * 0.5, all._43 + all[2][3]) * 0.5;)",
     [](double u, double v) {
         return Color{((u + v / 2) / 2 + M(0, 2)) / 2, ((v / 2 + .5 + .5) / 2 + M(3, 1)) / 2, .25,
                      (u + M(1, 3)) / 2};
     },
     SetCounting},

    // Pixels alone.
    {"PixelsAreThrownAway", "float4 Gone() { discard; return 0; }",
     "clip(t.x - 0.5); clip(float2(1, 0.9 - t.y)); if (t.y < 0.1) discard; else if (t.y < 0.25) "
     "return Gone(); return 1;",
     [](double u, double v) {
         const double there = u < .5 || v > .9 || v < .25 ? 0 : 1;
         return Color{there, there, there, there};
     },
     nullptr, true},
    {"DerivativesGoRightAndDown", "",
     "return float4(ddx(t.x), ddy(t.y), fwidth(t.x + t.y), -ddy(-t).y) * 8;",
     [](double, double) {
         return Color{.5, .5, 1, .5};
     },
     nullptr, true},
};

class EffectLanguageTest : public EffectPictureTest,
                           public testing::WithParamInterface<LanguageCase> {};

TEST_P(EffectLanguageTest, GivesTheFormulasNumbersInBothStages) {
    const LanguageCase& c = GetParam();
    for (const bool inVertices : {false, true}) {
        if (inVertices && c.pixelsOnly)
            continue;
        SCOPED_TRACE(inVertices ? "vertices" : "pixels");
        const Held<ID3DXEffect> effect = Compile(Shaded(c.globals, c.body, inVertices));
        if (c.set)
            c.set(effect);
        Clear(0);
        Render(effect, nullptr, [&] { inVertices ? Points() : Cover(); });
        ExpectPicture(c.expected);
    }
}
INSTANTIATE_TEST_SUITE_P(All, EffectLanguageTest, testing::ValuesIn(arithmetic),
                         [](const auto& c) { return std::string(c.param.name); });

// Textures: the picture of 16 by 16 tells its texels apart, that with levels the levels (each of
// one color), and that of 2 by 2 the filters and addresses.
Color GridTexel(int x, int y) {
    return {x / 15., y / 15., .5, 1};
}
Color LevelTexel(int level) {
    return {level / 4., 1 - level / 4., .25, 1};
}
Color CornerTexel(int x, int y) {
    return {x == y ? 1. : 0, x ? 1. : 0, y ? 1. : 0, 1};
}
std::uint32_t Pack(const Color& c) {
    const auto part = [](double x) { return static_cast<int>(std::lround(x * 255)); };
    return Packed(part(c[0]), part(c[1]), part(c[2]), part(c[3]));
}
double Address(double s, DWORD mode) {
    const double mirrored = std::abs(s - 2 * std::floor(s / 2 + .5));
    const double results[] = {0, Fract(s), mirrored, s, s, std::abs(s)};
    return std::clamp(results[mode], 0., .999);
}
Color Corner2(double u, double v, DWORD modeU, DWORD modeV) {
    return CornerTexel(Address(u, modeU) < .5 ? 0 : 1, Address(v, modeV) < .5 ? 0 : 1);
}
Color Linear2(double u, double v) {
    const double x = std::clamp(u * 2 - .5, 0., 1.), y = std::clamp(v * 2 - .5, 0., 1.);
    Color sum = {};
    for (std::size_t i = 0; i < 4; ++i)
        sum[i] = (CornerTexel(0, 0)[i] * (1 - x) + CornerTexel(1, 0)[i] * x) * (1 - y) +
                 (CornerTexel(0, 1)[i] * (1 - x) + CornerTexel(1, 1)[i] * x) * y;
    return sum;
}
Color GridAt(double u, double v) {
    return GridTexel(static_cast<int>(u * 16), static_cast<int>(v * 16));
}
Color Mixed(const Color& a, const Color& b) {
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2, (a[3] + b[3]) / 2};
}
// The states' names and values in the case of their authors, as D3DX took them.
const LanguageCase textured[] = {
    {"ASamplerReadsWhatTheHostSets",
     "texture Grid; sampler2D s = sampler_state { Texture = <Grid>; };", "return tex2D(s, t);",
     [](double u, double v) { return GridAt(u, v); }},
    {"AnUntypedSamplerIsOfWhatReadsIt",
     "Texture Grid : DIFFUSE; sampler s = sampler_state { texture = (Grid); magfilter = NONE; };",
     "return tex2D(s, t.yx);", [](double u, double v) { return GridAt(v, u); }},
    {"PlainSamplersTakeTheRegistersOfThePass",
     "texture2D Grid; texture Corners < string UIName = \"corners\"; >;\n"
     "sampler a : register(s3) = sampler_state { TEXTURE = <Grid>; };\n"
     "sampler b = sampler_state { Texture = Corners; AddressU = Wrap; SRGBTexture = FALSE; };",
     "return (tex2D(b, t) + tex2D(a, t)) * 0.5;",
     [](double u, double v) { return Mixed(Corner2(u, v, 1, 1), GridAt(u, v)); }},
    {"AddressesByName",
     "texture Corners; sampler2D s = sampler_state { Texture = <Corners>; AddressU = MIRROR; "
     "AddressV = clamp; MinFilter = Point; MagFilter = Point; MipFilter = None; };",
     "return tex2D(s, t * 3 - 1);",
     [](double u, double v) { return Corner2(u * 3 - 1, v * 3 - 1, 2, 3); }},
    {"AddressesByNumber",
     "texture Corners; sampler s = sampler_state { texture = <Corners>; ADDRESSU = 1; "
     "AddressV = 5; AddressW = 3; MaxAnisotropy = 2 * 2; };",
     "return tex2D(s, t * 3 - 1);",
     [](double u, double v) { return Corner2(u * 3 - 1, v * 3 - 1, 1, 5); }},
    {"BordersHaveTheirColor",
     "texture Corners; sampler s = sampler_state { Texture = <Corners>; AddressU = Border; "
     "AddressV = BORDER; BorderColor = 0x8000ff00; };",
     "return tex2D(s, t * 3 - 1);",
     [](double u, double v) {
         const double x = u * 3 - 1, y = v * 3 - 1;
         const bool in = x > 0 && x < 1 && y > 0 && y < 1;
         return in ? Corner2(x, y, 3, 3) : Color{0, 1, 0, 128 / 255.};
     }},
    {"FiltersAreLinear",
     "texture Corners; sampler s = sampler_state { Texture = <Corners>; MinFilter = LINEAR; "
     "MagFilter = Linear; AddressU = Clamp; AddressV = Clamp; };",
     "return tex2D(s, t);", [](double u, double v) { return Linear2(u, v); }},
    {"LodChoosesTheLevel",
     "texture Levels; sampler s = sampler_state { Texture = <Levels>; MipFilter = POINT; };",
     "return tex2Dlod(s, float4(t, 0, (int)(t.x * 4)));",
     [](double u, double) { return LevelTexel(static_cast<int>(u * 4)); }},
    {"LevelsAreMixedByALinearMipFilter",
     "texture Levels; sampler s = sampler_state { Texture = <Levels>; MipFilter = Linear; };",
     "return tex2Dlod(s, float4(t, 0, 1.5));",
     [](double, double) { return Mixed(LevelTexel(1), LevelTexel(2)); }},
    {"WithoutAMipFilterThereIsOneLevel",
     "texture Levels; sampler s = sampler_state { Texture = <Levels>; MipFilter = NONE; };",
     "return tex2Dlod(s, float4(t, 0, 2));", [](double, double) { return LevelTexel(0); }},
    {"BiasShiftsTheLevel",
     "texture Levels; sampler s = sampler_state { Texture = <Levels>; MipFilter = Point; };",
     "return tex2Dbias(s, float4(t, 0, 2));", [](double, double) { return LevelTexel(2); }},
    {"GradientsChooseTheLevel",
     "texture Levels; sampler s = sampler_state { Texture = <Levels>; MipFilter = Point; };",
     "float2 d = float2(8, 0) / 16; return tex2Dgrad(s, t, d, d.yx) * 0.5 + "
     "tex2D(s, t, ddx(t) * 2, ddy(t) * 2) * 0.5;",
     [](double, double) { return Mixed(LevelTexel(3), LevelTexel(1)); }},
    {"CoordinatesAreDividedByW", "texture Grid; sampler s = sampler_state { Texture = <Grid>; };",
     "return tex2Dproj(s, float4(t * 4, 0, 4));", [](double u, double v) { return GridAt(u, v); }},
    {"OneCoordinateReadsTheFirstRow",
     "texture Grid; sampler1D s = sampler_state { Texture = <Grid>; };", "return tex1D(s, t.x);",
     [](double u, double) { return GridAt(u, 0); }},
    {"SamplersAreArguments", R"(
texture Grid; texture Corners;
sampler2D grid = sampler_state { Texture = <Grid>; }; sampler corners = sampler_state { Texture = <Corners>; };
float4 Fetch(sampler2D from, float2 t, uniform float scale) { return tex2D(from, t) * scale; }
float4 Both(sampler a, sampler b, float2 t) { return Fetch(a, t, 0.5) + Fetch(b, t, 0.5); })",
     "return Both(grid, corners, t);",
     [](double u, double v) { return Mixed(GridAt(u, v), Corner2(u, v, 1, 1)); }},
    {"SamplersStandInArrays", R"(
texture Grid; texture Corners;
sampler Layers[2] = { sampler_state { Texture = <Grid>; }, sampler_state { Texture = <Corners>; } };)",
     "return tex2D(Layers[0], t) * 0.5 + tex2D(Layers[1], t) * 0.5;",
     [](double u, double v) { return Mixed(GridAt(u, v), Corner2(u, v, 1, 1)); }},
    {"MacrosMakeSamplers", R"(
#define SAMPLER(name, map, filter) texture map; sampler name = sampler_state { \
    Texture = <map>; MinFilter = filter; MagFilter = filter; };
SAMPLER(GridSampler, Grid, POINT)
#define READ(what) tex2D(what##Sampler, t))",
     "return READ(Grid);", [](double u, double v) { return GridAt(u, v); }},
    {"WithoutATextureAllIsBlack", R"(
texture Unset; texture Sky; texture Fog : VOLUME;
sampler2D flat = sampler_state { Texture = <Unset>; };
samplerCUBE sky = sampler_state { Texture = <Sky>; MinFilter = Linear; AddressW = Clamp; };
sampler fog = sampler_state { Texture = <Fog>; };)",
     "return tex2D(flat, t) + texCUBE(sky, float3(t, 1)) * float4(t, 0, 0.5) + "
     "tex3D(fog, float3(t, 0.5)) + texCUBElod(sky, float4(t, 1, 0)) + float4(0, 0.25, 0.5, -2.75);",
     [](double, double) {
         return Color{0, .25, .5, .75};
     }},
};

class EffectTextureTest : public EffectPictureTest,
                          public testing::WithParamInterface<LanguageCase> {};

TEST_P(EffectTextureTest, GivesTheTexelsThatItsStatesChoose) {
    Picture grid(16, 16, 0), corners(2, 2, 0);
    for (int i = 0; i < 256; ++i)
        grid.At(i % 16, i / 16) = Pack(GridTexel(i % 16, i / 16));
    for (int i = 0; i < 4; ++i)
        corners.At(i % 2, i / 2) = Pack(CornerTexel(i % 2, i / 2));
    const Held<IDirect3DTexture9> gridTexture = Texture(grid), cornerTexture = Texture(corners),
                                  levels = Texture(16, 16, 5);
    for (int level = 0; level < 5; ++level)
        FillLevel(levels, static_cast<UINT>(level),
                  Picture(16 >> level, 16 >> level, Pack(LevelTexel(level))));
    const Held<ID3DXEffect> effect = Compile(Shaded(GetParam().globals, GetParam().body));
    effect->SetTexture("Grid", gridTexture);
    effect->SetTexture("Corners", cornerTexture);
    effect->SetTexture("Levels", levels);
    // What a host has left there is the effect's to change.
    for (DWORD sampler = 0; sampler < 4; ++sampler)
        device->SetTexture(sampler, levels);
    Render(effect);
    // Two mixed values and the weights of a filter are each rounded.
    ExpectPicture(GetParam().expected, 2.01 / 255);
}
INSTANTIATE_TEST_SUITE_P(All, EffectTextureTest, testing::ValuesIn(textured),
                         [](const auto& c) { return std::string(c.param.name); });

} // namespace
} // namespace Tests
