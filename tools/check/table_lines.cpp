// SPDX-License-Identifier: MIT
//
// The half of the table that is no JSON: lines of scripts, fonts, the names of shaders.
#include "tools/check/table.hpp"

namespace Check {

void AddLines(Table& table) {
    table.events = {
        {"TIME_ELAPSED",
         {"seconds"},
         "once, when more than so many seconds have passed since the start or `ResetTimeElapsed`"},
        {"TIME_INTERVAL",
         {"seconds"},
         "each time more than so many seconds have passed. The first frame only starts the "
         "count-down; what a frame goes beyond it is dropped. 0 or less never fires"},
        {"KEY_TRIGGERED", {"key"}, "when the key goes down"},
        {"KEY_PRESSED", {"key"}, "in every frame in which the key is down"},
        {"KEY_RELEASED", {"key"}, "when the key goes up"}};
    table.commands = {{"CREATE_ENTITY",
                       {"word", "type", "POSITION", "x", "y", "z"},
                       "creates an entity of the type's template at a place in the world. `word` "
                       "is read and not used"},
                      {"WAIT",
                       {"seconds"},
                       "the command behind it runs once more than so many seconds have passed"}};

    const auto key = [](const char* name, const char* meaning) {
        return Key{.name = name, .type = Type::Whole, .meaning = meaning};
    };
    const char* const scale = "of the picture, by which the places are measured; text without one "
                              "of them does not show";
    const char* const place = "where the glyph lies in the picture";
    const char* const offset = "from the pen, and from the top of the line, to the top left of the "
                               "glyph; negative too";
    table.fontLines = {
        {"common",
         "",
         {key("lineHeight", "from line to line"),
          key("base", "from the top of a line to where letters stand"), key("scaleW", scale),
          key("scaleH", scale), key("pages", "number of pictures")}},
        {"char",
         "",
         {key("id", "code of the character, 0 to 255 in Latin-1: the first key of its line"),
          key("x", place), key("y", place), key("width", place), key("height", place),
          key("xoffset", offset), key("yoffset", offset), key("xadvance", "how far the pen goes"),
          key("page", "its picture, from 0")}}};
}

void AddEffects(Table& table) {
    const std::string flat = "twodbasicshader.fx", basic = "basicshader.fx", light = "vornlight.fx",
                      last = "distortionshader.fx", shadow = "shadow.fx", skin = "skel.vsh";
    table.effects = {
        {skin, "`Graphic::SetSkelMatrix`", "VertexBlend", "vs_3_0"},
        {"skel.psh", "the same", "ps_main", "ps_3_0"},
        {flat, "`DrawTwoD`", "TransformTech", "", "pixelmodulate", "`DrawTwoDModulate`"},
        {basic, "`BasicShaderDraw`: `GraphicsSystem::BeamEffects`", "TransformTech", ""},
        {light, "`PhongLightingDraw`: `GraphicsSystem::Update`", "PhongLighting", ""},
        {last, "`DistortionEffect`: the last pass, which lays the three targets over the screen",
         "TransformTech", ""},
        {shadow, "`ShadowMap`", "TransformTech", ""}};

    const auto add = [&](const std::vector<std::string>& files, const char* type, const char* value,
                         std::initializer_list<const char*> names) {
        for (const char* name : names)
            table.effectNames.push_back({files, name, type, value});
    };
    const std::vector<std::string> all = {flat, basic, light, last, shadow};
    add(all, "float4x4", "of the draw", {"worldMatrix"});
    add(all, "float4x4", "of the device at that moment", {"viewMatrix", "projectionMatrix"});
    add({flat, basic, last}, "texture",
        "the texture, white where there is none; of the last pass the scene's target",
        {"ModelTexture"});
    add({flat, light}, "float", "front and back of `Graphic::SetFog`, 0 before", {"PF", "PB"});
    add({flat}, "float", "258, always", {"R", "G", "B"});
    add({flat}, "float", "the alpha of the call, 0 to 1", {"A"});
    add({light}, "float", "the material's modulation colour, 0 to 255",
        {"modR", "modG", "modB", "modA"});
    add({light}, "float", "its additive colour, 0 to 255", {"addR", "addG", "addB", "addA"});
    add({light}, "float", "length of the last frame (unit: seconds)", {"time"});
    add({light}, "float3", "`SetPointLightPosition`", {"lights.pos"});
    add({light}, "float4", "`SetPointLightSettings`, and 1; black before",
        {"lights.ambient", "lights.diffuse", "lights.specular"});
    add({light}, "float", "100, always", {"lights.radius"});
    add({light}, "texture", "the material's, white where there is none", {"colorMapTexture"});
    add({light}, "float4", "of the material file",
        {"material.ambient", "material.diffuse", "material.emissive", "material.specular"});
    add({light}, "float", "of the material file", {"material.shininess"});
    add({light}, "float3", "`Graphic::CameraPos`, which the host sets", {"cameraPos"});
    add({light}, "float4", "(0.9, 0.9, 0.9, 0), always", {"globalAmbient"});
    add({light}, "float4x4", "the identity, always", {"worldInverseTransposeMatrix"});
    add({last}, "texture", "the two other targets", {"BeamTexture", "ParticlesTexture"});
    add({last}, "float", "0 to 0.7, then again (unit: seconds)", {"Time"});
    add({last}, "float", "0 to 0.07, then again (unit: seconds)", {"TargetTime"});
    add({last}, "bool", "of the call", {"distortion"});
    add({last}, "float2", "of the call, 0 to 1 from the top left", {"center"});
    add({skin}, "float4x4", "world, view and projection", {"WorldViewProj"});
    add({skin}, "float4x4 array", "a matrix for each bone of the model, at most 256",
        {"FinalTransforms"});
}

} // namespace Check
