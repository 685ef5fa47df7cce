// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/framebuffers.hpp"

#include <algorithm>

namespace VornPlatform {

GLuint Framebuffers::Of(const GlTexture* color, const GlTexture* depth) {
    const auto found = std::find_if(mPairs.begin(), mPairs.end(), [&](const Pair& pair) {
        return pair.color == color && pair.depth == depth;
    });
    if (found != mPairs.end())
        return found->name;
    GLuint& name = mPairs.emplace_back(Pair{color, depth, 0}).name;
    glCreateFramebuffers(1, &name);
    if (color)
        glNamedFramebufferTexture(name, GL_COLOR_ATTACHMENT0, color->Name(), 0);
    if (depth)
        glNamedFramebufferTexture(name, GL_DEPTH_ATTACHMENT, depth->Name(), 0);
    return name;
}

bool Framebuffers::Forget(const GlTexture& texture) {
    return std::erase_if(mPairs, [&](const Pair& pair) {
               if (pair.color != &texture && pair.depth != &texture)
                   return false;
               glDeleteFramebuffers(1, &pair.name);
               return true;
           }) != 0;
}

void Framebuffers::Free() {
    for (const Pair& pair : mPairs)
        glDeleteFramebuffers(1, &pair.name);
    mPairs.clear();
}

} // namespace VornPlatform
