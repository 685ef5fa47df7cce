// SPDX-License-Identifier: MIT
//
// Every object behind an interface of Direct3D or D3DX has this as a base: it bears a name for
// the log of calls, and is counted while a host holds it.
//
//   class Font final : public ID3DXFont, public LiveObject {
//   public:
//       Font() : LiveObject(ObjectKind::Font) {}
//   };
#pragma once

#include "platform/control/vorn_platform.hpp"

#include <string>

namespace VornPlatform {

enum class ObjectKind {
    Direct3D,
    Device,
    Texture,
    Surface,
    VertexBuffer,
    IndexBuffer,
    VertexDeclaration,
    VertexShader,
    PixelShader,
    Font,
    Line,
    RenderToSurface,
    DataBuffer,
    ConstantTable,
    Effect
};

class LiveObject {
public:
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;

    /// "VertexBuffer 3": the third that was made in this process.
    std::string Name() const;

protected:
    /// What is part of something else has a name, but is not `counted`.
    explicit LiveObject(ObjectKind kind, bool counted = true);
    ~LiveObject();

    /// Nobody holds it any more, or somebody does again, while it stays in memory.
    void SetCounted(bool counted);

private:
    ObjectKind mKind;
    bool mCounted = false;
    int mNumber;
};

} // namespace VornPlatform
