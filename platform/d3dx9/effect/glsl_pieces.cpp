// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/shader_compiler.hpp"

#include <spirv_cross/spirv_glsl.hpp>

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>

namespace VornPlatform {

namespace {

using spirv_cross::CompilerGLSL;
using spirv_cross::Resource;

const char* GlslType(UINT columns) {
    constexpr const char* Names[] = {"float", "vec2", "vec3", "vec4"};
    return Names[std::clamp(columns, 1u, 4u) - 1];
}

// Functions that Direct3D 9 defines where GLSL does not: roots, logarithms and powers take the
// absolute value, and a vector of no length stays what it is.
constexpr std::pair<std::string_view, std::string_view> Defined[] = {
    {"pow", "$ d9_pow($ x, $ y) { return pow(abs(x), y); }\n"},
    {"log", "$ d9_log($ x) { return log(abs(x)); }\n"},
    {"log2", "$ d9_log2($ x) { return log2(abs(x)); }\n"},
    {"sqrt", "$ d9_sqrt($ x) { return sqrt(abs(x)); }\n"},
    {"inversesqrt", "$ d9_inversesqrt($ x) { return inversesqrt(abs(x)); }\n"},
    {"normalize", "$ d9_normalize($ x) "
                  "{ return x * min(inversesqrt(dot(x, x)), 3.402823466e+38); }\n"}};

void CallDefined(std::string& body) {
    const auto isName = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
    };
    std::string helpers;
    for (const auto& [name, text] : Defined) {
        bool isUsed = false;
        const std::string call = std::string(name) + "(";
        std::string changed;
        std::size_t done = 0;
        for (std::size_t at = 0; (at = body.find(call, at)) != std::string::npos; at += call.size())
            if (at == 0 || !isName(body[at - 1])) {
                changed.append(body, done, at - done).append("d9_");
                done = at;
                isUsed = true;
            }
        if (!isUsed)
            continue;
        body = changed.append(body, done);
        for (const char* type : {"float", "vec2", "vec3", "vec4"})
            for (const char c : text)
                helpers += c == '$' ? std::string(type) : std::string(1, c);
    }
    body.insert(0, helpers);
}

// What stands at file scope in the text that the compiler of GLSL writes, one declaration after
// another.
class PieceReader {
public:
    explicit PieceReader(const std::string& text) : stream_(text) {}

    void read(ShaderCode& code) {
        for (std::string line; std::getline(stream_, line);) {
            if (line.starts_with("#"))
                continue;
            if (line.starts_with("struct hx_b"))
                blockStructs_[line.substr(7)] = line + "\n" + takeBraces() + ";\n";
            else if (line.starts_with("struct "))
                code.body += line + "\n" + takeBraces() + ";\n";
            else if (line.starts_with("layout(") && line.find(" uniform ") != std::string::npos)
                readUniform(code, line);
            else if (line.starts_with("layout(location"))
                code.body += asPlainVariable(line);
            else if (line == "void main()")
                code.body += "void shader_main()\n";
            else
                code.body += line + "\n";
        }
        while (!blockStructs_.empty())
            writeStruct(code, blockStructs_.begin()->first);
    }

private:
    // In one order whatever the stage, but those inside of others first.
    void writeStruct(ShaderCode& code, const std::string& name) {
        const auto node = blockStructs_.extract(name);
        std::string inner;
        std::istringstream words(node.mapped());
        while (words >> inner)
            if (blockStructs_.contains(inner))
                writeStruct(code, inner);
        code.structs += node.mapped();
    }

    // "layout(location = 0) in vec3 p;"
    static std::string asPlainVariable(const std::string& line) {
        std::istringstream words(line.substr(line.find(')') + 1));
        std::string word, text;
        while (words >> word)
            if (word != "in" && word != "out")
                text += (text.empty() ? "" : " ") + word;
        return text + "\n";
    }

    // Lines up to that of the closing brace, which is left in without what follows it.
    std::string takeBraces() {
        std::string text;
        for (std::string line; std::getline(stream_, line);) {
            if (line.starts_with("}")) {
                behind_ = line.substr(1);
                return text + "}";
            }
            text += line + "\n";
        }
        return text;
    }

    void readUniform(ShaderCode& code, const std::string& line) {
        const std::size_t uniform = line.find(" uniform ");
        if (line.ends_with(";")) {
            code.body += line.substr(uniform + 1) + "\n";
            return;
        }
        std::string members = takeBraces();
        members.erase(0, members.find('{') + 1);
        members.erase(members.rfind('}'));
        code.members = members;
        code.blockName = behind_.substr(1, behind_.find(';') - 1);
    }

    std::istringstream stream_;
    std::string behind_;
    std::map<std::string, std::string> blockStructs_; // by name
};

class GlslWriter {
public:
    GlslWriter(std::vector<std::uint32_t> spirv, const EntryText& entry)
        : compiler_(std::move(spirv)), entry_(entry) {}

    GlslShader write() {
        CompilerGLSL::Options options = compiler_.get_common_options();
        options.version = 450;
        options.es = false;
        options.vulkan_semantics = false;
        options.enable_row_major_load_workaround = false;
        compiler_.set_common_options(options);

        const auto active = compiler_.get_active_interface_variables();
        const spirv_cross::ShaderResources resources = compiler_.get_shader_resources(active);
        compiler_.set_enabled_interface_variables(active);
        readBlock(resources);
        for (const Resource& sampler : resources.sampled_images)
            readSampler(sampler);
        readVariables(resources.stage_inputs, entry_.inputs, shader_.code.inputs);
        readVariables(resources.stage_outputs, entry_.outputs, shader_.code.outputs);

        PieceReader(compiler_.compile()).read(shader_.code);
        CallDefined(shader_.code.body);
        shader_.code.stage = entry_.profile.stage;
        shader_.code.version = entry_.profile.version;
        finishBlock();
        return std::move(shader_);
    }

private:
    void readBlock(const spirv_cross::ShaderResources& resources) {
        for (const Resource& block : resources.uniform_buffers) {
            const spirv_cross::SPIRType& type = compiler_.get_type(block.base_type_id);
            shader_.code.blockSize =
                (static_cast<UINT>(compiler_.get_declared_struct_size(type)) + 15) / 16 * 16;
            for (UINT i = 0; i < type.member_types.size(); ++i)
                shader_.members.push_back({i, compiler_.type_struct_member_offset(type, i), false});
            nameParts(block.base_type_id, "hx_b");
            for (const spirv_cross::BufferRange& range :
                 compiler_.get_active_buffer_ranges(block.id))
                if (range.index < shader_.members.size())
                    shader_.members[range.index].isUsed = true;
        }
    }

    // Both stages of a program write the block alike, whatever else they name.
    void nameParts(std::uint32_t id, const std::string& prefix) {
        const spirv_cross::SPIRType type = compiler_.get_type(id);
        for (UINT i = 0; i < type.member_types.size(); ++i) {
            const std::string name = prefix + std::to_string(i);
            compiler_.set_member_name(id, i, name);
            const spirv_cross::SPIRType& member = compiler_.get_type(type.member_types[i]);
            if (member.basetype != spirv_cross::SPIRType::Struct)
                continue;
            compiler_.set_name(member.self, name + "_t");
            nameParts(member.self, name + "_");
        }
    }

    // Names of the text are there in GLSL, or others if it has them for something else.
    void readSampler(const Resource& resource) {
        const spirv_cross::SPIRType& type = compiler_.get_type(resource.type_id);
        ShaderSampler sampler;
        sampler.index = static_cast<UINT>(shader_.samplers.size());
        sampler.kind = type.image.dim == spv::DimCube ? SamplerKind::Cube
                       : type.image.dim == spv::Dim3D ? SamplerKind::Volume
                                                      : SamplerKind::Flat;
        sampler.name = "hx_s" + std::to_string(sampler.index);
        shader_.samplers.push_back(compiler_.get_name(resource.id));
        compiler_.set_name(resource.id, sampler.name);
        shader_.code.samplers.push_back(sampler);
    }

    void readVariables(const spirv_cross::SmallVector<Resource>& resources,
                       const std::vector<EntryVariable>& known,
                       std::vector<ShaderVariable>& variables) {
        for (const EntryVariable& variable : known)
            for (const Resource& resource : resources)
                if (compiler_.get_name(resource.id) == variable.name)
                    variables.push_back({variable.name,
                                         GlslType(compiler_.get_type(resource.type_id).vecsize),
                                         variable.usage, variable.index});
    }

    void finishBlock() {
        ShaderCode& code = shader_.code;
        code.members.erase(0, code.members.find_first_not_of('\n'));
        if (code.members.empty())
            code.blockSize = 0;
        code.body.erase(0, code.body.find_first_not_of('\n'));
    }

    CompilerGLSL compiler_;
    const EntryText& entry_;
    GlslShader shader_;
};

} // namespace

GlslShader WriteGlsl(std::vector<std::uint32_t> spirv, const EntryText& entry,
                     const SourcePlace& place) {
    try {
        return GlslWriter(std::move(spirv), entry).write();
    } catch (const spirv_cross::CompilerError& error) {
        throw EffectError(place, std::string("the shader has no counterpart: ") + error.what());
    }
}

} // namespace VornPlatform
