// SPDX-License-Identifier: MIT
//
// Shaders as objects of the device, and the registers that a host's own shaders read:
//
//   RegisterReads reads(code);
//   reads.Gather(registers, block); // of code.blockSize bytes, zero where no register goes
#pragma once

#include "platform/d3d9/child.hpp"
#include "platform/d3d9/limits.hpp"
#include "platform/d3d9/shader_code.hpp"

#include <array>
#include <cstddef>
#include <utility>

namespace VornPlatform {

/// Of one stage.
using Registers = std::array<std::array<float, 4>, MaxRegisters>;

class RegisterReads {
public:
    explicit RegisterReads(const ShaderCode& code);
    bool Any() const { return !mRuns.empty() || !mConverted.empty(); }
    void Gather(const Registers& registers, std::byte* block) const;

private:
    // Copies that follow one another in both places, as those of arrays of matrices.
    struct Run {
        UINT registerIndex, offset, bytes;
    };
    std::vector<Run> mRuns;
    std::vector<RegisterCopy> mConverted; // to whole numbers
};

template <typename Interface, ObjectKind Kind>
class Shader final : public CountedChild<Interface> {
public:
    Shader(Device& device, std::shared_ptr<const ShaderCode> code)
        : CountedChild<Interface>(device, Kind, Child::Resets::Survives), mCode(std::move(code)),
          mReads(*mCode) {}

    const std::shared_ptr<const ShaderCode>& Code() const { return mCode; }
    const RegisterReads& Reads() const { return mReads; }

private:
    std::shared_ptr<const ShaderCode> mCode;
    RegisterReads mReads;
};

using VertexShader = Shader<IDirect3DVertexShader9, ObjectKind::VertexShader>;
using PixelShader = Shader<IDirect3DPixelShader9, ObjectKind::PixelShader>;

} // namespace VornPlatform
