// SPDX-License-Identifier: MIT
#include "platform/d3d9/shader.hpp"

#include <cstdint>
#include <cstring>

namespace VornPlatform {

namespace {

constexpr UINT RegisterBytes = 16;

std::int32_t WholeNumber(float value) {
    constexpr float limit = 2147483648.0f;
    if (!(value > -limit && value < limit)) // or no number at all
        return value >= limit ? INT32_MAX : value <= -limit ? INT32_MIN : 0;
    return static_cast<std::int32_t>(value);
}

} // namespace

RegisterReads::RegisterReads(const ShaderCode& code) {
    for (const RegisterCopy& copy : code.registers) {
        if (copy.type != RegisterCopy::Float) {
            mConverted.push_back(copy);
            continue;
        }
        const UINT bytes = copy.count * UINT(sizeof(float));
        if (!mRuns.empty()) {
            Run& last = mRuns.back();
            if (last.bytes % RegisterBytes == 0 && copy.offset == last.offset + last.bytes &&
                copy.registerIndex == last.registerIndex + last.bytes / RegisterBytes) {
                last.bytes += bytes;
                continue;
            }
        }
        mRuns.push_back({copy.registerIndex, copy.offset, bytes});
    }
}

void RegisterReads::Gather(const Registers& registers, std::byte* block) const {
    for (const Run& run : mRuns)
        std::memcpy(block + run.offset, registers[run.registerIndex].data(), run.bytes);
    for (const RegisterCopy& copy : mConverted)
        for (UINT i = 0; i < copy.count; ++i) {
            const float value = registers[copy.registerIndex][i];
            const std::int32_t number = copy.type == RegisterCopy::Int ? WholeNumber(value)
                                        : value != 0                   ? 1
                                                                       : 0;
            std::memcpy(block + copy.offset + i * sizeof number, &number, sizeof number);
        }
}

} // namespace VornPlatform
