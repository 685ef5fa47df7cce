// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/block_layout.hpp"

#include "platform/d3dx9/effect/spirv_words.hpp"

#include <spirv_cross/spirv.hpp>

#include <algorithm>
#include <map>

namespace VornPlatform {

namespace {

using Id = std::uint32_t;

class BlockWriter {
public:
    explicit BlockWriter(std::vector<std::uint32_t>& spirv) {
        ForEachInstruction(spirv, [&](std::uint32_t code, std::uint32_t* words, std::size_t count) {
            read(code, words, count);
        });
    }

    void write(const Reflection& reflection) {
        const auto members = structs_.find(block_);
        if (members == structs_.end())
            return;
        for (std::size_t i = 0;
             i < std::min(members->second.size(), reflection.blockMembers.size()); ++i)
            place(block_, i, reflection.parameters[reflection.blockMembers[i]], 0);
    }

private:
    void read(std::uint32_t code, std::uint32_t* words, std::size_t count) {
        if (code == spv::OpDecorate && count == 4 && words[2] == spv::DecorationArrayStride)
            strides_[words[1]] = &words[3];
        else if (code == spv::OpDecorate && count == 3 && words[2] == spv::DecorationBlock)
            block_ = words[1];
        else if (code == spv::OpMemberDecorate && count == 5 && words[3] == spv::DecorationOffset)
            offsets_[{words[1], words[2]}] = &words[4];
        else if (code == spv::OpTypeStruct)
            structs_[words[1]].assign(words + 2, words + count);
        else if (code == spv::OpTypeArray && count == 4)
            arrays_[words[1]] = {words[2], words[3]};
        else if (code == spv::OpConstant && count == 4)
            constants_[words[2]] = words[3];
    }

    void place(Id structure, std::size_t member, const ShaderConstant& constant, UINT base) {
        if (const auto at = offsets_.find({structure, static_cast<Id>(member)});
            at != offsets_.end())
            *at->second = constant.offset - base;
        Id type = structs_[structure][member];
        // Of an array of arrays each has the stride of all that is in it.
        UINT stride = constant.elementStride * std::max(1u, constant.elements);
        while (arrays_.contains(type)) {
            const auto [element, size] = arrays_[type];
            stride /= std::max(1u, constants_[size]);
            if (const auto at = strides_.find(type); at != strides_.end())
                *at->second = stride;
            type = element;
        }
        if (structs_.contains(type))
            for (std::size_t i = 0; i < std::min(structs_[type].size(), constant.members.size());
                 ++i)
                place(type, i, constant.members[i], constant.offset);
    }

    Id block_ = 0;
    std::map<Id, std::uint32_t*> strides_;
    std::map<std::pair<Id, Id>, std::uint32_t*> offsets_;
    std::map<Id, std::vector<Id>> structs_;
    std::map<Id, std::pair<Id, Id>> arrays_;
    std::map<Id, std::uint32_t> constants_;
};

} // namespace

void LayOutBlock(std::vector<std::uint32_t>& spirv, const Reflection& reflection) {
    BlockWriter(spirv).write(reflection);
}

} // namespace VornPlatform
