// SPDX-License-Identifier: MIT
#include "tools/view/lines.hpp"

#include "vorn/render/graphic.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace View {

using Vorn::Vector3;

void Bounds::Add(const Vector3& point) {
    if (!std::isfinite(point.x + point.y + point.z))
        return;
    if (Empty())
        low = high = point;
    low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
}

void Bounds::Add(const Bounds& other) {
    if (other.Empty())
        return;
    Add(other.low);
    Add(other.high);
}

void Lines::Add(const Vector3& a, const Vector3& b, std::uint32_t color) {
    mEnds.push_back({a.x, a.y, a.z, color});
    mEnds.push_back({b.x, b.y, b.z, color});
}

// Corners in the order of OBB.
void Lines::edges(const Vector3* corners, std::uint32_t color) {
    static constexpr std::pair<int, int> ends[12] = {{0, 1}, {0, 2}, {0, 4}, {1, 3},
                                                     {1, 5}, {2, 3}, {2, 6}, {3, 7},
                                                     {4, 5}, {4, 6}, {5, 7}, {6, 7}};
    for (const auto& [from, to] : ends)
        Add(corners[from], corners[to], color);
}

void Lines::Box(const Vorn::OBB& box, std::uint32_t color) {
    Vector3 corners[8];
    box.GetVertices(corners);
    edges(corners, color);
}

void Lines::Box(const Vorn::Matrix4& world, const Bounds& bounds, std::uint32_t color) {
    Vector3 corners[8];
    Vorn::OBB(Vorn::Matrix4::Translation(bounds.Middle()), bounds.Size()).GetVertices(corners);
    for (Vector3& corner : corners)
        corner = world * corner;
    edges(corners, color);
}

void Lines::Sphere(const Vector3& middle, float radius, std::uint32_t color) {
    constexpr int steps = 64;
    constexpr float step = 2 * std::numbers::pi_v<float> / steps;
    const auto at = [radius](int i) {
        const float turn = static_cast<float>(i) * step;
        return std::pair(radius * std::cos(turn), radius * std::sin(turn));
    };
    for (int i = 0; i < steps; ++i) {
        const auto [a, b] = at(i);
        const auto [c, d] = at(i + 1);
        Add(middle + Vector3(a, b, 0), middle + Vector3(c, d, 0), color);
        Add(middle + Vector3(a, 0, b), middle + Vector3(c, 0, d), color);
        Add(middle + Vector3(0, a, b), middle + Vector3(0, c, d), color);
    }
}

void Lines::Write(const Vector3& at, std::string text, std::uint32_t color) {
    mLabels.push_back({at, std::move(text), color});
}

void Lines::Draw(const Vorn::Matrix4& projection, bool inFront) const {
    IDirect3DDevice9* const device = Vorn::Graphic::LiveDevice();
    if (!device || mEnds.empty())
        return;
    // A little nearer, so that lines on a surface are not hidden by it.
    Vorn::Matrix4 nearer = projection;
    nearer.m[10] *= 0.9995f;
    const D3DXMATRIX world = Vorn::Matrix4::Identity, before = projection, shifted = nearer;
    device->SetTransform(D3DTS_WORLD, &world);
    device->SetTransform(D3DTS_PROJECTION, &shifted);
    device->SetTexture(0, nullptr);
    device->SetVertexDeclaration(nullptr);
    device->SetVertexShader(nullptr);
    device->SetPixelShader(nullptr);
    device->SetFVF(D3DFVF_XYZ | D3DFVF_DIFFUSE);
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    device->SetRenderState(D3DRS_ALPHATESTENABLE, FALSE);
    device->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);
    device->SetRenderState(D3DRS_ZENABLE, inFront ? FALSE : TRUE);
    device->DrawPrimitiveUP(D3DPT_LINELIST, static_cast<UINT>(Count()), mEnds.data(), sizeof(End));
    device->SetTransform(D3DTS_PROJECTION, &before);
}

void Lines::Clear() {
    mEnds.clear();
    mLabels.clear();
}

float AddGrid(Lines& lines, const Bounds& bounds) {
    const float span = (bounds.Empty() ? 1.0f : std::max(bounds.Radius(), 1e-4f)) * 4.0f;
    const float power = std::pow(10.0f, std::floor(std::log10(span / 10.0f)));
    const float fraction = span / 10.0f / power;
    const float cell = power * (fraction < 1.5f   ? 1.0f
                                : fraction < 3.5f ? 2.0f
                                : fraction < 7.5f ? 5.0f
                                                  : 10.0f);
    constexpr int half = 10;
    constexpr std::uint32_t thin = 0x30FFFFFFu, thick = 0x60FFFFFFu;
    const float edge = half * cell;
    const Vector3 middle(std::round(bounds.Middle().x / cell) * cell, 0,
                         std::round(bounds.Middle().z / cell) * cell);
    for (int i = -half; i <= half; ++i) {
        const float at = static_cast<float>(i) * cell;
        const std::uint32_t color = i % 5 == 0 ? thick : thin;
        lines.Add(middle + Vector3(at, 0, -edge), middle + Vector3(at, 0, edge), color);
        lines.Add(middle + Vector3(-edge, 0, at), middle + Vector3(edge, 0, at), color);
    }
    // The axes from the origin, a cell long each.
    const std::pair<Vector3, std::uint32_t> axes[] = {
        {{1, 0, 0}, 0xFFE0605Cu}, {{0, 1, 0}, 0xFF6CC06Au}, {{0, 0, 1}, 0xFF5C90E8u}};
    const char* const names[] = {"X", "Y", "Z"};
    for (int i = 0; i < 3; ++i) {
        const auto& [axis, color] = axes[i];
        lines.Add({}, axis * (2 * cell), color);
        lines.Write(axis * (2.15f * cell), names[i], color);
    }
    for (int i = -half; i <= half; i += 5)
        if (i != 0)
            lines.Write(
                middle + Vector3(static_cast<float>(i) * cell, 0, edge),
                fmt::format("{:g}", static_cast<double>(middle.x + static_cast<float>(i) * cell)),
                0xA0FFFFFFu);
    return cell;
}

} // namespace View
