// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/spirv_limits.hpp"

#include "platform/d3dx9/effect/spirv_words.hpp"

#include <spirv_cross/spirv.hpp>

#include <algorithm>
#include <unordered_map>

namespace VornPlatform {

namespace {

using Id = std::uint32_t;

constexpr std::uint64_t LargestArray = 1u << 16; // numbers
constexpr std::uint64_t LongestShader = 200'000; // instructions, with each call written out
constexpr std::uint64_t MostBlocks = 20'000;     // of one function, between its branches
constexpr std::uint64_t Endless = 1ull << 40;

class Limits {
public:
    explicit Limits(const SourcePlace& place) : place_(place) {}

    void read(std::uint32_t code, const std::uint32_t* words, std::size_t count) {
        switch (code) {
        case spv::OpConstant:
            constants_[words[2]] = words[3];
            break;
        case spv::OpTypeVector:
        case spv::OpTypeMatrix:
            sizes_[words[1]] = sizeOf(words[2]) * words[3];
            break;
        case spv::OpTypeStruct: {
            std::uint64_t sum = 0;
            for (std::size_t i = 2; i < count; ++i)
                sum += sizeOf(words[i]);
            sizes_[words[1]] = std::min(sum, Endless);
            break;
        }
        case spv::OpTypeArray:
            readArray(words[1], std::min(sizeOf(words[2]) * constants_[words[3]], Endless));
            break;
        case spv::OpFunction:
            function_ = words[2];
            blocks_ = 0;
            order_.push_back(function_);
            break;
        case spv::OpLabel:
            if (++blocks_ > MostBlocks)
                throw EffectError(place_, "a function has too many loops and conditions");
            break;
        case spv::OpFunctionCall:
            calls_[function_].push_back(words[3]);
            break;
        default:
            break;
        }
        if (!order_.empty())
            ++lengths_[function_];
    }

    // Recursion has been refused before.
    void checkLength() {
        for (const Id function : order_)
            if (lengthOf(function) > LongestShader)
                throw EffectError(place_, "the shader is too long");
    }

private:
    void readArray(Id type, std::uint64_t size) {
        if (size == 0)
            throw EffectError(place_, "an array has no elements");
        if (size > LargestArray)
            throw EffectError(place_, "an array has more than " + std::to_string(LargestArray) +
                                          " numbers");
        sizes_[type] = size;
    }

    std::uint64_t sizeOf(Id type) const {
        const auto known = sizes_.find(type);
        return known != sizes_.end() ? known->second : 1;
    }

    std::uint64_t lengthOf(Id function) {
        const auto known = whole_.find(function);
        if (known != whole_.end())
            return known->second;
        std::uint64_t length = lengths_[function];
        for (const Id callee : calls_[function])
            length = std::min(length + lengthOf(callee), Endless);
        return whole_[function] = length;
    }

    const SourcePlace& place_;
    std::unordered_map<Id, std::uint32_t> constants_;
    std::unordered_map<Id, std::uint64_t> sizes_, lengths_, whole_;
    std::unordered_map<Id, std::vector<Id>> calls_;
    std::vector<Id> order_;
    Id function_ = 0;
    std::uint64_t blocks_ = 0;
};

} // namespace

void CheckLimits(std::vector<std::uint32_t>& spirv, const SourcePlace& place) {
    Limits limits(place);
    ForEachInstruction(spirv, [&](std::uint32_t code, std::uint32_t* words, std::size_t count) {
        limits.read(code, words, count);
    });
    limits.checkLength();
}

} // namespace VornPlatform
