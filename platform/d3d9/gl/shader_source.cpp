// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/shader_source.hpp"
#include "platform/d3d9/gl/block_reads.hpp"
#include "platform/d3d9/gl/vertex_arrays.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace VornPlatform {

namespace {

constexpr DWORD Model3 = 3; // from which on colours between the stages have no bounds

bool Has(const std::vector<ShaderVariable>& variables, const Varying& varying) {
    return std::any_of(variables.begin(), variables.end(), [&](const ShaderVariable& variable) {
        return Varying{variable.usage, variable.index} == varying;
    });
}

// That the vertex stage writes and the pixel stage reads.
std::vector<Varying> VaryingsOf(const ProgramParts& parts) {
    std::vector<Varying> read, linked;
    if (parts.pixel) {
        for (const ShaderVariable& input : parts.pixel->inputs)
            read.push_back({input.usage, input.index});
    } else {
        read.push_back(VertexColor);
        if (parts.fixed.textured)
            read.push_back(TextureCoordinates);
    }
    const auto isWritten = [&](const Varying& varying) {
        return parts.vertex ? Has(parts.vertex->outputs, varying)
                            : varying == VertexColor || varying == TextureCoordinates;
    };
    for (const Varying& varying : read)
        if (isWritten(varying) && std::find(linked.begin(), linked.end(), varying) == linked.end())
            linked.push_back(varying);
    return linked;
}

std::string Declare(const std::vector<Varying>& varyings, const char* direction) {
    std::string text;
    for (const Varying& varying : varyings)
        text += std::string(direction) + " vec4 " + varying.Name() + ";\n";
    return text;
}

std::size_t SizeOf(std::string_view type) {
    const char last = type.empty() ? '1' : type.back();
    return last >= '2' && last <= '4' ? static_cast<std::size_t>(last - '0') : 1;
}

// "ivec2" of a name of four floats.
std::string Convert(const std::string& value, const std::string& type) {
    constexpr std::string_view parts[] = {"", ".x", ".xy", ".xyz", ""};
    const std::size_t size = SizeOf(type);
    const std::string cut = value + std::string(parts[size]);
    if (type.starts_with("b"))
        return size == 1 ? cut + " != 0.0"
                         : "notEqual(" + cut + ", vec" + std::to_string(size) + "(0.0))";
    return type + "(" + cut + ")";
}

// And back: what is not there is 0.
std::string Widen(const ShaderVariable& variable) {
    constexpr const char* rest[] = {"", ", 0.0, 0.0, 0.0", ", 0.0, 0.0", ", 0.0", ""};
    return "vec4(" + variable.name + rest[SizeOf(variable.type)] + ")";
}

std::string Rename(const std::string& text, const std::string& from, const std::string& to) {
    std::string result;
    std::size_t end = 0;
    for (std::size_t at = FindName(text, from, 0); at != std::string::npos;
         at = FindName(text, from, at + 1)) {
        result.append(text, end, at - end).append(to);
        end = at + from.size();
    }
    return result.append(text, end);
}

// A name of a sampler may stand for something else in the other stage.
std::string BodyOf(const ShaderCode& code) {
    std::string body = code.body;
    for (const ShaderSampler& sampler : code.samplers)
        body = Rename(body, sampler.name, SamplerName(code.stage, sampler.index));
    return body + "\n";
}

// In an array the matrices are laid out by the array's own word, as all of them go row by row.
std::string WithoutLayout(std::string text) {
    constexpr std::string_view word = "layout(row_major) ";
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at))
        text.erase(at, word.size());
    return text;
}

std::string MergedBlocksOf(const ShaderCode& code, UINT blocks) {
    return WithoutLayout(code.structs) + "\nstruct vp_T {\n" + WithoutLayout(code.members) +
           "\n};\nlayout(std140, row_major, binding = 0) uniform vp_B0 { vp_T vp_g[" +
           std::to_string(blocks) + "]; };\n" + MergedRecordSource + "int vp_record;\n#define " +
           code.blockName + " vp_g[vp_record]\n";
}

// What the pixel stage reads of its draw's block.
constexpr const char* HandedOn = "vp_f_";

std::vector<BlockMember> ReadsOf(const ShaderCode& pixel) {
    return FewReads(pixel).value_or(std::vector<BlockMember>());
}

std::string HandedOnOf(const ShaderCode& pixel, const std::string& direction) {
    std::string text;
    for (const BlockMember& member : ReadsOf(pixel))
        text += direction + " " + member.type + " " + HandedOn + member.name + ";\n";
    return text;
}

std::string BlockOf(const ShaderCode& code, unsigned int binding) {
    if (code.blockSize == 0)
        return code.structs + "\n";
    const std::string number = std::to_string(binding);
    return code.structs + "\nlayout(std140, binding = " + number + ") uniform vp_B" + number +
           " {\n" + code.members + "\n} " + code.blockName + ";\n";
}

const ShaderVariable* Find(const std::vector<ShaderVariable>& variables, BYTE usage) {
    const auto found =
        std::find_if(variables.begin(), variables.end(),
                     [&](const ShaderVariable& v) { return v.usage == usage && v.index == 0; });
    return found == variables.end() ? nullptr : &*found;
}

std::string AttributesOf(const ShaderCode& code, std::string& fill) {
    std::string text;
    std::vector<int> declared;
    for (const ShaderVariable& input : code.inputs) {
        const int location = AttributeLocation(input.usage, input.index);
        std::string value = "vec4(0.0)";
        if (location >= 0) {
            value = "vp_a" + std::to_string(location);
            if (std::find(declared.begin(), declared.end(), location) == declared.end())
                text +=
                    "layout(location = " + std::to_string(location) + ") in vec4 " + value + ";\n";
            declared.push_back(location);
        }
        fill += "    " + input.name + " = " + Convert(value, input.type) + ";\n";
    }
    return text;
}

std::string ShaderVertexSource(const ProgramParts& parts, const std::vector<Varying>& varyings) {
    const ShaderCode& code = *parts.vertex;
    std::string fill;
    const std::string attributes = AttributesOf(code, fill);
    std::string source =
        parts.blocks ? MergedBlocksOf(code, parts.blocks) : BlockOf(code, Block::Vertex);
    if (parts.blocks)
        source += HandedOnOf(*parts.pixel, "flat out");
    source += attributes + BodyOf(code) + "void main() {\n";
    if (parts.blocks)
        source += "    vp_record = VP_RECORD;\n";
    source += fill + "    shader_main();\n";
    if (parts.blocks)
        for (const BlockMember& member : ReadsOf(*parts.pixel))
            source +=
                "    " + (HandedOn + member.name) + " = vp_g[vp_record]." + member.name + ";\n";
    if (const ShaderVariable* position = Find(code.outputs, D3DDECLUSAGE_POSITION))
        source += "    gl_Position = " + Widen(*position) + ";\n";
    if (const ShaderVariable* size = Find(code.outputs, D3DDECLUSAGE_PSIZE))
        source += "    gl_PointSize = " + Widen(*size) + ".x;\n";
    const bool clamps = !parts.pixel || (code.version >> 8 & 0xff) < Model3;
    for (const ShaderVariable& output : code.outputs) {
        const Varying varying = {output.usage, output.index};
        if (std::find(varyings.begin(), varyings.end(), varying) == varyings.end())
            continue;
        std::string value = Widen(output);
        if (clamps && output.usage == D3DDECLUSAGE_COLOR)
            value = "clamp(" + value + ", 0.0, 1.0)";
        source += "    " + varying.Name() + " = " + value + ";\n";
    }
    return source + PlacePosition + "}\n";
}

std::string ShaderPixelSource(const ProgramParts& parts, const std::vector<Varying>& varyings) {
    const ShaderCode& code = *parts.pixel;
    std::string source;
    if (parts.blocks)
        source = code.structs + "\n" + HandedOnOf(code, "flat in") +
                 ReplaceReads(BodyOf(code), code.blockName, HandedOn);
    else
        source = BlockOf(code, ShareBlock(parts) ? Block::Vertex : Block::Pixel) + BodyOf(code);
    source += "void main() {\n";
    for (const ShaderVariable& input : code.inputs) {
        const Varying varying = {input.usage, input.index};
        const bool linked = std::find(varyings.begin(), varyings.end(), varying) != varyings.end();
        source += "    " + input.name + " = " +
                  Convert(linked ? varying.Name() : "vec4(0.0)", input.type) + ";\n";
    }
    source += "    shader_main();\n";
    const ShaderVariable* color = Find(code.outputs, D3DDECLUSAGE_COLOR);
    source += "    vp_result = " + (color ? Widen(*color) : "vec4(0.0)") + ";\n";
    if (const ShaderVariable* depth = Find(code.outputs, D3DDECLUSAGE_DEPTH))
        source += "    gl_FragDepth = " + Widen(*depth) + ".x;\n";
    return source + AlphaTestSource(parts.fixed) + "}\n";
}

} // namespace

std::string SamplerName(ShaderStage stage, UINT index) {
    return (stage == ShaderStage::Vertex ? "vp_sv" : "vp_sp") + std::to_string(index);
}

bool ShareBlock(const ProgramParts& parts) {
    const ShaderCode *vertex = parts.vertex, *pixel = parts.pixel;
    return vertex && pixel && vertex->blockSize > 0 && vertex->registers.empty() &&
           pixel->registers.empty() && vertex->blockSize == pixel->blockSize &&
           vertex->members == pixel->members && vertex->structs == pixel->structs;
}

bool MayMerge(const ProgramParts& parts) {
    if (!parts.vertex || !parts.pixel)
        return !parts.vertex && !parts.pixel;
    const ShaderCode &vertex = *parts.vertex, &pixel = *parts.pixel;
    return vertex.blockSize > 0 && vertex.blocksInArray && vertex.registers.empty() &&
           (pixel.blockSize == 0 || ShareBlock(parts)) && FewReads(pixel);
}

UINT BlockSizeOf(const ProgramParts& parts) {
    return parts.vertex ? parts.vertex->blockSize : UINT(sizeof(D3DMATRIX));
}

bool SetsPointSize(const ProgramParts& parts) {
    return parts.vertex && (Find(parts.vertex->outputs, D3DDECLUSAGE_PSIZE) ||
                            parts.vertex->body.find("gl_PointSize") != std::string::npos);
}

std::string VertexSourceOf(const ProgramParts& parts) {
    const std::vector<Varying> varyings = VaryingsOf(parts);
    const std::string head = "#version 450 core\n"
                             "invariant gl_Position;\n"
                             "layout(location = 64) uniform vec4 vp_place;\n" +
                             Declare(varyings, "out");
    return head + (parts.vertex ? ShaderVertexSource(parts, varyings)
                                : FixedVertexSource(parts.fixed, varyings, parts.blocks));
}

std::string PixelSourceOf(const ProgramParts& parts) {
    const std::vector<Varying> varyings = VaryingsOf(parts);
    const std::string head = "#version 450 core\n"
                             "layout(location = 3) uniform int vp_reference;\n"
                             "layout(location = 0) out vec4 vp_result;\n" +
                             Declare(varyings, "in");
    return head + (parts.pixel ? ShaderPixelSource(parts, varyings)
                               : FixedPixelSource(parts.fixed, varyings));
}

} // namespace VornPlatform
