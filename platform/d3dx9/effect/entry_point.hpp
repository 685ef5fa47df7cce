// SPDX-License-Identifier: MIT
//
// The text of one shader: the functions that an entry reaches, and a generated one that takes the
// inputs, calls the author's and hands on the outputs.
//
//   EntryText entry = WriteEntry(text, call);
//   entry.text;        // its entry is EntryName
//
// Inputs and outputs are plain variables of floats that are known by their names, so nothing
// depends on what the compiler makes of semantics.
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

constexpr const char* EntryName = "hx_main";

/// "vs_3_0"
struct Profile {
    ShaderStage stage = ShaderStage::Vertex;
    DWORD version = 0; // as in ShaderCode
    int model = 3;     // the first digit
};
std::optional<Profile> ReadProfile(std::string_view name);

struct EntryVariable {
    std::string name;
    BYTE usage = 0, index = 0;
};

struct EntryText {
    Profile profile;
    std::string text;
    std::vector<EntryVariable> inputs, outputs;
};

/// Raises EffectError for a function that is not there, arguments that do not fit and semantics
/// that are none.
EntryText WriteEntry(const ShaderText& text, const CompileCall& call);

/// The name in the text of the block's copy of a parameter that a shader writes.
std::string BlockCopyName(const std::string& name);

} // namespace VornPlatform
