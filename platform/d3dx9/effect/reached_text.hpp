// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// What one entry reaches of a text. Functions that it does not reach may be broken, as with
/// Direct3D 9, and are left out. Static variables whose value is computed, and copies of the
/// parameters that a function writes, are set by the entry.
class ReachedText {
public:
    /// `given` are the words of the arguments of the `compile` call.
    ReachedText(const ShaderText& text, const HlslFunction& entry, const std::vector<Words>& given);

    /// Line for line as the author's.
    std::string text() const;
    /// The first statements of the entry.
    std::string start() const { return start_; }

private:
    void reach(const Words& words, WordRange range);
    void findWritten();
    void noteWritten(const Words& words, WordRange target);
    void findComputed();
    bool isParameter(const std::string& name) const;

    const ShaderText& source_;
    std::vector<bool> functions_;            // by index of the text's
    std::vector<bool> variables_, computed_; // of static ones: reached and computed, computed
    std::map<std::string, std::size_t, std::less<>> computedByName_;
    std::vector<std::string> written_;
    std::vector<std::string> parameters_;
    std::string start_;
};

} // namespace VornPlatform
