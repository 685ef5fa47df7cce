// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/spirv_check.hpp"

#include "platform/d3dx9/effect/spirv_words.hpp"

#include <spirv-tools/libspirv.hpp>
#include <spirv_cross/spirv.hpp>

namespace VornPlatform {

namespace {

// The line that holds for an instruction, counted from 1.
int LineOf(std::vector<std::uint32_t> spirv, std::size_t instruction) {
    int line = 0;
    std::size_t number = 0;
    ForEachInstruction(spirv, [&](std::uint32_t code, const std::uint32_t* words, std::size_t) {
        if (++number <= instruction && code == spv::OpLine)
            line = static_cast<int>(words[2]);
    });
    return line;
}

} // namespace

std::optional<SpirvFault> FindFault(const std::vector<std::uint32_t>& spirv) {
    std::optional<SpirvFault> fault;
    spvtools::SpirvTools tools(SPV_ENV_UNIVERSAL_1_0);
    tools.SetMessageConsumer([&](spv_message_level_t level, const char*,
                                 const spv_position_t& position, const char* message) {
        if (level > SPV_MSG_ERROR || fault)
            return;
        const std::string text(message);
        fault = SpirvFault{text.substr(0, text.find('\n')), LineOf(spirv, position.index)};
    });
    // The block is laid out later.
    spvtools::ValidatorOptions options;
    options.SetSkipBlockLayout(true);
    const bool isFine = tools.Validate(spirv.data(), spirv.size(), options);
    if (!isFine && !fault)
        fault = SpirvFault{"the shader means nothing", 0};
    return isFine ? std::nullopt : fault;
}

} // namespace VornPlatform
