// SPDX-License-Identifier: MIT
#include "platform/d3dx9/line_shape.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace VornPlatform {

namespace {

// Far beyond every target; what reaches further is cut there, where floats still have a fraction.
constexpr double Far = 65536;

struct Point {
    double x, y;
};

Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}
Point operator*(Point a, double factor) {
    return {a.x * factor, a.y * factor};
}

struct Segment {
    Point from, to;
};

bool IsFinite(const D3DXVECTOR2& point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

// Cut at the square of what counts, by Liang and Barsky; nothing if it lies outside.
std::optional<Segment> Cut(const D3DXVECTOR2& a, const D3DXVECTOR2& b) {
    if (!IsFinite(a) || !IsFinite(b))
        return std::nullopt;
    const Point from = {static_cast<double>(a.x), static_cast<double>(a.y)};
    const Point way = {static_cast<double>(b.x) - from.x, static_cast<double>(b.y) - from.y};
    double begin = 0, end = 1;
    for (const auto& [start, length] : {std::pair(from.x, way.x), std::pair(from.y, way.y)}) {
        if (length == 0) {
            if (std::abs(start) > Far)
                return std::nullopt;
            continue;
        }
        const double low = (-Far - start) / length, high = (Far - start) / length;
        begin = std::max(begin, std::min(low, high));
        end = std::min(end, std::max(low, high));
    }
    if (begin >= end || (way.x == 0 && way.y == 0))
        return std::nullopt;
    return Segment{from + way * begin, from + way * end};
}

/// A place across or along a line, and how much of the colour is there.
struct Stop {
    double at, coverage;
};

// Full between two edges, or fading out around each of those that are `soft`. Where there is less
// than a pixel between them it is never full.
std::array<Stop, 4> Stops(double begin, double end, bool softBegin, bool softEnd) {
    const double length = end - begin, ramp = std::min(0.5, length / 2);
    const double most = softBegin && softEnd ? std::min(1.0, length) : 1.0;
    return {{{softBegin ? begin - 0.5 : begin, softBegin ? 0.0 : most},
             {softBegin ? begin + ramp : begin, most},
             {softEnd ? end - ramp : end, most},
             {softEnd ? end + 0.5 : end, softEnd ? 0.0 : most}}};
}

D3DCOLOR Faded(D3DCOLOR color, double coverage) {
    const auto alpha = static_cast<D3DCOLOR>(std::lround(double(color >> 24) * coverage));
    return (color & 0xffffff) | alpha << 24;
}

/// The grid of the two ways as triangles; strips without an extent are left out.
class Grid {
public:
    Grid(const Segment& segment, const LineStyle& style, D3DCOLOR color)
        : mOrigin(segment.from), mColor(color) {
        const Point way = {segment.to.x - segment.from.x, segment.to.y - segment.from.y};
        mLength = std::hypot(way.x, way.y);
        mAlong = way * (1 / mLength);
        mAcross = {-mAlong.y, mAlong.x};
        if (style.glLines)
            mAcross = std::abs(way.x) >= std::abs(way.y) ? Point{0, 1} : Point{1, 0};
    }

    double Length() const { return mLength; }

    void AppendTo(std::vector<OverlayVertex>& vertices, const std::array<Stop, 4>& along,
                  const std::array<Stop, 4>& across) const {
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) {
                const Stop &a = along[i], &b = along[i + 1], &c = across[j], &d = across[j + 1];
                if (a.at >= b.at || c.at >= d.at)
                    continue;
                // The diagonal of a corner runs outwards, so that it fades evenly.
                if ((i == 0) == (j == 0))
                    Append(vertices, {{{a, c}, {b, c}, {b, d}, {a, c}, {b, d}, {a, d}}});
                else
                    Append(vertices, {{{a, c}, {b, c}, {a, d}, {b, c}, {b, d}, {a, d}}});
            }
    }

private:
    void Append(std::vector<OverlayVertex>& vertices,
                const std::array<std::pair<Stop, Stop>, 6>& corners) const {
        for (const auto& [along, across] : corners) {
            const Point point = mOrigin + mAlong * along.at + mAcross * across.at;
            vertices.push_back({static_cast<float>(point.x), static_cast<float>(point.y),
                                Faded(mColor, along.coverage * across.coverage), 0, 0});
        }
    }

    Point mOrigin, mAlong = {}, mAcross = {};
    double mLength = 0;
    D3DCOLOR mColor;
};

} // namespace

std::vector<OverlayVertex> LineVertices(const D3DXVECTOR2* points, DWORD count,
                                        const LineStyle& style, D3DCOLOR color) {
    std::vector<OverlayVertex> vertices;
    const double half = std::min(static_cast<double>(style.width), Far) / 2;
    for (DWORD i = 0; i + 1 < count; ++i) {
        const auto segment = Cut(points[i], points[i + 1]);
        if (!segment)
            continue;
        const Grid grid(*segment, style, color);
        const bool softBegin = style.antialias && i == 0;
        const bool softEnd = style.antialias && i + 2 == count;
        grid.AppendTo(vertices, Stops(0, grid.Length(), softBegin, softEnd),
                      Stops(-half, half, style.antialias, style.antialias));
    }
    return vertices;
}

} // namespace VornPlatform
