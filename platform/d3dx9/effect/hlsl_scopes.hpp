// SPDX-License-Identifier: MIT
//
// What the names in the functions of a rewritten text stand for, as far as operators ask.
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

#include <map>
#include <set>

namespace VornPlatform {

struct HlslValue {
    enum class Kind { Unknown, Numbers, Structure, Array, Sampler, Nothing };
    Kind kind = Kind::Unknown;
    bool isPlace = false; // may be assigned to
    const SourceStruct* structure = nullptr;
    std::size_t dimensions = 0;   // of an array
    Kind element = Kind::Unknown; // of an array
};

/// "an array", for messages.
const char* NameOf(HlslValue::Kind kind);

class HlslScopes {
public:
    /// The outermost has what is declared at file scope. Raises EffectError as RequireFloats does.
    explicit HlslScopes(const ShaderText& text);

    void enter() { scopes_.emplace_back(); }
    void leave() { scopes_.pop_back(); }
    void declare(const std::string& name, const HlslValue& value);
    void declareType(const std::string& name) { types_.insert(name); }
    /// Null for a name that is none of a variable.
    const HlslValue* find(std::string_view name) const;
    bool isStaticVariable(const std::string& name) const;
    bool isType(const std::string& word) const;
    HlslValue valueOf(const std::string& type, std::size_t dimensions) const;
    /// GLSL has no other matrices.
    void requireFloats(const std::string& type, const SourcePlace& place) const;

private:
    const ShaderText& text_;
    std::vector<std::map<std::string, HlslValue, std::less<>>> scopes_;
    std::set<std::string, std::less<>> types_; // that functions declare
};

} // namespace VornPlatform
