// SPDX-License-Identifier: MIT
#include "platform/d3d9/live_objects.hpp"

#include <array>

namespace VornPlatform {

namespace {

struct Kind {
    const char* name;
    int LiveObjects::*count; // null: of no interest
};
// In the order of ObjectKind.
constexpr std::array<Kind, 15> Kinds = {{{"Direct3D", nullptr},
                                         {"Device", &LiveObjects::devices},
                                         {"Texture", &LiveObjects::textures},
                                         {"Surface", &LiveObjects::surfaces},
                                         {"VertexBuffer", &LiveObjects::vertexBuffers},
                                         {"IndexBuffer", &LiveObjects::indexBuffers},
                                         {"VertexDeclaration", &LiveObjects::declarations},
                                         {"VertexShader", &LiveObjects::vertexShaders},
                                         {"PixelShader", &LiveObjects::pixelShaders},
                                         {"Font", &LiveObjects::fonts},
                                         {"Line", &LiveObjects::lines},
                                         {"RenderToSurface", &LiveObjects::renderToSurfaces},
                                         {"Buffer", &LiveObjects::dataBuffers},
                                         {"ConstantTable", &LiveObjects::constantTables},
                                         {"Effect", &LiveObjects::effects}}};

constinit LiveObjects alive;
constinit std::array<int, Kinds.size()> made = {};

std::size_t Index(ObjectKind kind) {
    return static_cast<std::size_t>(kind);
}

} // namespace

LiveObject::LiveObject(ObjectKind kind, bool counted) : mKind(kind), mNumber(++made[Index(kind)]) {
    SetCounted(counted);
}

LiveObject::~LiveObject() {
    SetCounted(false);
}

void LiveObject::SetCounted(bool counted) {
    const auto count = Kinds[Index(mKind)].count;
    if (count && counted != mCounted)
        alive.*count += counted ? 1 : -1;
    mCounted = counted;
}

std::string LiveObject::Name() const {
    return Kinds[Index(mKind)].name + (" " + std::to_string(mNumber));
}

LiveObjects CountLiveObjects() {
    return alive;
}

std::string ObjectName(const IUnknown* object) {
    if (!object)
        return "null";
    const auto* ours = dynamic_cast<const LiveObject*>(object);
    return ours ? ours->Name() : "unknown";
}

} // namespace VornPlatform
