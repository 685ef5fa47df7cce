// SPDX-License-Identifier: MIT
//
// Random volumes are compared with formulas in double precision that the engine does not use. Each
// formula gives a margin: above zero where the answer must be yes, below where it must be no, and
// near zero where rounding may decide. "And" of two margins is their minimum, "or" their maximum.
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

using namespace Exact;
using Exact::Random;
using namespace Vorn;
using Triple = std::array<double, 3>;

const Vector3 Untouched(77, 78, 79);

/// Wants enough answers of each kind outside the band in which any answer is accepted.
struct Answers {
    ~Answers() { EXPECT_GT(std::min(yes, no), 50); }
    void Expect(bool actual, double margin) {
        if (std::abs(margin) < 2e-3)
            return;
        EXPECT_EQ(actual, margin > 0) << "margin " << margin;
        ++(margin > 0 ? yes : no);
    }
    int yes = 0, no = 0;
};

double Wide(float f) {
    return static_cast<double>(f);
}

/// An oriented box and what it is made of.
struct Box {
    OBB box;
    std::array<Vec, 3> axes;
    Triple half;
    Vec center;

    Box(Random& random, float reach, bool flat = false)
        : box(Matrix4::Translation(random.Place(reach)) * Matrix4::RotationEuler(random.Place(4)),
              random.Place(3.5f) + Vector3(4, 4, 4)) {
        if (flat)
            box = OBB(box.transform, Vector3(box.extents.x, 0, box.extents.z));
        const Matrix4& m = box.transform;
        axes = {Of(m.Col1ToVec3()), Of(m.Col2ToVec3()), Of(m.Col3ToVec3())};
        half = {Wide(box.extents.x) / 2, Wide(box.extents.y) / 2, Wide(box.extents.z) / 2};
        center = Of(box.Position());
    }
    Triple Local(const Vec& v) const { return {Dot(v, axes[0]), Dot(v, axes[1]), Dot(v, axes[2])}; }
};

/// A face by its axis and side; the order is that of GetPlane.
struct Side {
    std::size_t axis;
    double sign;
};
constexpr Side Sides[] = {{0, -1}, {0, 1}, {2, -1}, {2, 1}, {1, 1}, {1, -1}};

Sphere RandomSphere(Random& random, float reach, float radius) {
    const Vector3 center = random.Place(reach);
    return {center, random.Float(0.1f, radius)};
}

/// From somewhere towards a point near `target`, or right away from it.
Ray RayAbout(Random& random, const Vec& target, float spread) {
    const Vector3 origin = random.Place(10);
    const Vec to = target + Of(random.Place(spread)) - Of(origin);
    return {origin, To((random.Int(0, 3) == 0 ? -1.0 : 1.0) * Unit(to))};
}

TEST(Intersection, VolumesThatTouchOnWholeNumbersAreHit) {
    Random random(31);
    const auto whole = [&](int low) {
        const int x = random.Int(low, 4), y = random.Int(low, 4), z = random.Int(low, 4);
        return Vector3(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
    };
    for (int run = 0; run < 4000; ++run) {
        const Vector3 a = whole(-4), b = whole(-4), halfA = whole(1), halfB = whole(0);
        const Vector3 apart = a - b, reach = halfA + halfB;
        const OBB boxA(Matrix4::Translation(a), 2 * halfA),
            boxB(Matrix4::Translation(b), 2 * halfB);
        const bool level = std::abs(apart.x) <= reach.x && std::abs(apart.y) <= reach.y;
        const bool met = level && std::abs(apart.z) <= reach.z;
        const bool near = apart.SquareLength() <= reach.x * reach.x;
        EXPECT_EQ(SphereSphere(Sphere(a, halfA.x), Sphere(b, halfB.x)), near);
        EXPECT_EQ(AABBToAABB(AABB(a, halfA), AABB(b, halfB)), met);
        EXPECT_EQ(OBBToOBB(boxA, boxB), met);
        const Vector3 low = b - reach, high = b + reach;
        EXPECT_EQ(Point2ToRect({a.x, a.y}, {low.x, low.y}, {high.x, high.y}), level);
        EXPECT_FALSE(SphereOBB(Sphere(a, halfA.x), boxB)) << "no test is made";
        EXPECT_FALSE(DynamicOBBToOBB(boxA, b, boxB, a)) << "no test is made";
    }
}

double OverlapAlongNormals(const Box& a, const Box& b) {
    double overlap = 1e9;
    for (std::size_t i = 0; i < 3; ++i) {
        if (a.half[(i + 1) % 3] == 0 || a.half[(i + 2) % 3] == 0)
            continue; // a face without an area has no normal
        double reach = a.half[i];
        for (std::size_t j = 0; j < 3; ++j)
            reach += b.half[j] * std::abs(Dot(a.axes[i], b.axes[j]));
        overlap = std::min(overlap, reach - std::abs(Dot(a.axes[i], a.center - b.center)));
    }
    return overlap;
}

TEST(Intersection, OrientedBoxesAreSeparatedByNormalsOfTheFirstOnly) {
    Random random(33);
    Answers answers;
    int asymmetric = 0;
    for (int run = 0; run < 3000; ++run) {
        const Box a(random, 6, run % 4 == 0), b(random, 6, run % 3 == 0);
        const bool there = OBBToOBB(a.box, b.box);
        answers.Expect(there, OverlapAlongNormals(a, b));
        asymmetric += there != OBBToOBB(b.box, a.box);
    }
    EXPECT_GT(asymmetric, 20);
    OBB box(Matrix4(), Vector3(2, 2, 2));
    const OBB far(Matrix4::Translation(50, 0, 0), Vector3(2, 2, 2)), point({}, {});
    EXPECT_TRUE(OBBToOBB(point, far)) << "no normals, nothing that separates";
    EXPECT_FALSE(OBBToOBB(far, point));
    std::fill(box.normals, box.normals + 6, Vector3(0, 1, 0));
    EXPECT_TRUE(OBBToOBB(box, far)) << "stale normals are taken as they are";
}

TEST(Intersection, RaysMeetSpheresWhereTheQuadraticSaysSo) {
    Random random(34);
    Answers distances, points;
    for (int run = 0; run < 4000; ++run) {
        const Sphere sphere = RandomSphere(random, 5, 6);
        const Ray ray = RayAbout(random, Of(sphere.center), sphere.radius * 1.2f);
        const Vec o = Of(ray.origin), d = Of(ray.direction), w = Of(sphere.center) - o;
        const double along = Dot(w, d),
                     inside = Wide(sphere.radius) * Wide(sphere.radius) - Dot(w, w);
        const double discriminant = along * along + inside;
        float t = -5;
        Vector3 hit = Untouched;
        const bool met = RayToSphere(ray, sphere, &t);
        const bool entered = RayToSphereIntersection(ray, sphere, &hit);
        distances.Expect(met, std::max(inside, std::min(along, discriminant)));
        points.Expect(entered, std::min({-inside, along, discriminant}));
        EXPECT_EQ(met, t != -5);
        EXPECT_EQ(entered, hit != Untouched);
        if (std::abs(inside) < 0.05 || std::abs(along) < 0.05 || discriminant < 0.05 || !met)
            continue;
        const double root = std::sqrt(discriminant);
        ExpectNear(t, inside < 0 ? along - root : along > 0 ? along + root : 0, 3e-3);
        if (entered)
            ExpectNear(hit, o + (along - root) * d, 3e-3);
    }
    const Sphere sphere(Vector3(1, 0, 0), 1);
    const Ray inwards({}, {1, 0, 0}), outwards({}, {-1, 0, 0}), past({0, 1.000003f, 0}, {1, 0, 0});
    float t = -5;
    Vector3 hit = Untouched;
    EXPECT_TRUE(RayToSphere(inwards, sphere, &t) && t == 2) << "from the rim itself";
    EXPECT_TRUE(RayToSphere(outwards, sphere, &t) && t == 0);
    EXPECT_TRUE(RayToSphereIntersection(inwards, sphere, &hit) && hit == Vector3());
    EXPECT_FALSE(RayToSphereIntersection(outwards, sphere, &hit));
    EXPECT_TRUE(RayToSphereIntersection(past, sphere, &hit)) << "the point has a tolerance";
    EXPECT_FALSE(RayToSphere(past, sphere, &t)) << "the distance has none";
}

/// Where a ray meets the plane of a face, for a box about the origin.
struct Meeting {
    double ahead; // how far the first corner lies before the origin, not behind it
    double t;
    double inside; // how far from the rim

    Meeting(const Side& side, const Triple& o, const Triple& d, const Triple& half)
        : ahead(0), t((side.sign * half[side.axis] - o[side.axis]) / d[side.axis]), inside(1e9) {
        Triple corner = {-1, 1, -1};
        corner[side.axis] = side.sign;
        for (std::size_t i = 0; i < 3; ++i) {
            ahead += (corner[i] * half[i] - o[i]) * d[i];
            if (i != side.axis)
                inside = std::min(inside, half[i] - std::abs(o[i] + t * d[i]));
        }
    }
    double Hit() const { return std::min({ahead, t, inside}); }
};

TEST(Intersection, RaysMeetPlanesFacesAndBoxes) {
    Random random(35);
    Answers planes, bounded, oriented, aligned;
    for (int run = 0; run < 2000; ++run) {
        const Box box(random, 5);
        Ray ray = RayAbout(random, box.center, 5);
        ray.direction *= random.Float(0.5f, 2); // need not be of length 1
        const Vec o = Of(ray.origin), d = Of(ray.direction), out = o - box.center;
        const Triple local = box.Local(out), along = box.Local(d);
        FlatPlane faces[6];
        box.box.GetPlane(faces);
        double turned = -1e9, straight = -1e9;
        for (std::size_t f = 0; f < 6; ++f) {
            const Meeting face(Sides[f], local, along, box.half);
            turned = std::max(turned, face.Hit());
            straight =
                std::max(straight,
                         Meeting(Sides[f], {out.x, out.y, out.z}, {d.x, d.y, d.z}, box.half).Hit());
            if (std::abs(along[Sides[f].axis]) < 0.02)
                continue;
            // Written where it is reached, also behind the origin, which is no hit.
            const auto expectHit = [&](const Vector3& hit, double reached) {
                const Vec expected = reached > 0 ? o + face.t * d : Of(Untouched);
                if (std::abs(reached) > 0.05)
                    ExpectNear(hit, expected, 1e-3 * (1 + std::abs(face.t)));
            };
            Vector3 hit = Untouched, rim = Untouched;
            const Plane plane(faces[f].corners[0], faces[f].normal);
            planes.Expect(RayToPlaneIntersection(ray, plane, &hit), std::min(face.ahead, face.t));
            expectHit(hit, face.ahead);
            const bool met = RayToBoundedPlaneIntersection(ray, faces[f], &rim);
            bounded.Expect(met, face.Hit());
            expectHit(rim, std::min(face.ahead, face.inside));
            EXPECT_EQ(RayToBoundedPlaneIntersection(ray, faces[f], nullptr), met);
        }
        // By any face whose first corner does not lie behind the ray, whether it enters or leaves.
        oriented.Expect(RayToOBB(ray, box.box), turned);
        const AABB straightBox(box.box.Position(), box.box.extents / 2);
        aligned.Expect(RayToAABB(ray, straightBox), straight);
    }
    const AABB plank(Vector3(), Vector3(10, 1, 1));
    EXPECT_FALSE(RayToAABB(Ray({5, 0, 0}, {0.1f, -1, 0}), plank)) << "leaves by its lower face";
    EXPECT_TRUE(RayToAABB(Ray({5, 0, 0}, {-0.1f, -1, 0}), plank)) << "towards the first corner";
    const Vector3 corners[4] = {{4, 0, 0}, {4, 2, 0}, {4, 2, 2}, {4, 0, 2}};
    for (const Vector3& rim : corners)
        EXPECT_TRUE(RayToBoundedPlaneIntersection(Ray({}, rim), FlatPlane(corners), nullptr));
}

TEST(Intersection, RaysAlongAPlaneMeetItFarOutOnTheSideOfItsPoint) {
    const auto expect = [](const Vector3& point, const Vector3& direction, bool met, float x) {
        const Plane plane(point, Vector3(0, 1, 0));
        Vector3 hit = Untouched;
        EXPECT_EQ(RayToPlaneIntersection(Ray({}, direction), plane, &hit), met) << x;
        EXPECT_FLOAT_EQ(hit.x, x);
    };
    expect({5, 2, 0}, {1, 0, 0}, true, 2e6f);
    expect({5, -2, 0}, {1, 0, 0}, false, -2e6f);
    expect({5, 0, 0}, {1, 0, 0}, false, 0);
    expect({5, 2, 0}, {1, -9e-6f, 0}, true, 2e6f); // a slope that is taken for none
    expect({5, 2, 0}, {1, -1e-4f, 0}, false, -2e4f);
    // The plane lies ahead, but its point decides.
    expect({-5, 2, 0}, {1, 1, 0}, false, Untouched.x);
}

TEST(Intersection, SweptSpheresMeetPlanesAndTheEndlessPlanesOfBoxes) {
    Random random(37);
    Answers planes, boxes;
    for (int run = 0; run < 2000; ++run) {
        const Box box(random, 3);
        const Sphere sphere = RandomSphere(random, 15, 0.6f);
        const Vector3 vSphere = random.Place(3), vBox = random.Place(3), move = vSphere - vBox;
        const Triple gap = box.Local(Of(sphere.center) - box.center), way = box.Local(Of(move));
        const double r = Wide(sphere.radius);
        FlatPlane faces[6];
        box.box.GetPlane(faces);
        double nearest = -1e9;
        for (std::size_t f = 0; f < 6; ++f) {
            const auto& [axis, sign] = Sides[f];
            const double start = gap[axis] - sign * box.half[axis], end = start + way[axis];
            const double side = start > 0 ? 1 : -1, first = std::abs(start), last = side * end;
            const double margin = r - std::min(first, last);
            nearest = std::max(nearest, margin);
            float t = -5;
            Vector3 hit = Untouched;
            planes.Expect(DynamicSphereToPlane(sphere, move, faces[f], t, hit), margin);
            if (std::abs(r - first) < 0.01 || std::abs(first - last) < 0.1)
                continue;
            // Written even where the span ends before.
            double time = (first - r) / (first - last);
            Vec at = Of(sphere.center) + time * Of(move) - side * sign * r * Of(faces[f].normal);
            if (r > first)
                time = 0, at = Of(sphere.center);
            else if (last > first)
                time = -5, at = Of(Untouched);
            ExpectNear(t, time, 1e-3 * (1 + std::abs(time)));
            ExpectNear(hit, at, 0.01 * (1 + std::abs(time)));
        }
        boxes.Expect(DynamicSphereToOBB(sphere, vSphere, box.box, vBox), nearest);
        boxes.Expect(DynamicOBBToSphere(box.box, vBox, sphere, vSphere), nearest);
    }
    const Vector3 corners[4] = {{0, 0, 0}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}};
    const FlatPlane floor(corners);
    float t = -5;
    Vector3 hit;
    EXPECT_FALSE(DynamicSphereToPlane({{9, 3, 9}, 1}, {0, -2, 0}, floor, t, hit));
    EXPECT_EQ(t, 1.0f) << "reached at the very end of the span";
    EXPECT_TRUE(DynamicSphereToPlane({{9, 1, 9}, 1}, {0, 5, 0}, floor, t, hit)) << "touches first";
}

TEST(Intersection, SweptSpheresMeetEachOtherWithinTheSpan) {
    Random random(39);
    Answers apart, overlapping;
    for (int run = 0; run < 6000; ++run) {
        const Sphere a = RandomSphere(random, 6, 3), b = RandomSphere(random, 6, 3);
        const Vector3 va = random.Place(5), vb = random.Place(5);
        const Vec move = Of(va) - Of(vb), w = Of(b.center) - Of(a.center);
        const double reach = Wide(a.radius) + Wide(b.radius),
                     closing = Dot(w, move) / Dot(move, move);
        const bool met = DynamicSphereToSphere(a, va, b, vb);
        if (Length(w) > reach + 0.01)
            apart.Expect(met, reach - Length(w - std::clamp(closing, 0.0, 1.0) * move));
        else if (Length(w) < reach - 0.01 && std::abs(closing) > 0.01)
            // Those that close in are met only if they are out on the other side by the end.
            overlapping.Expect(met, closing < 0 ? 1 : Length(w - move) - reach);
    }
    const Sphere ball({0, 0, 0}, 1), other({4, 0, 0}, 1);
    EXPECT_FALSE(DynamicSphereToSphere(ball, {1, 2, 3}, ball, {1, 2, 3})) << "both at rest";
    EXPECT_FALSE(DynamicSphereToSphere(ball, {2, 0, 0}, other, {})) << "at the very end";
    EXPECT_TRUE(DynamicSphereToSphere(ball, {2, 0, 0}, other, {-0.1f, 0, 0}));
}

/// Looks at moments from 0 to 15. An axis along which the boxes come together from apart never
/// parts them again: only axes along which they overlap at the start set an end.
bool BoxesMeet(const Triple& gap, const Triple& v, double reach) {
    for (int moment = 0; moment <= 3000; ++moment) {
        bool met = true;
        for (std::size_t i = 0; i < 3; ++i) {
            const double sign = v[i] < 0 ? 1 : -1; // the second box comes from this side
            const double now = sign * (gap[i] + 0.005 * moment * v[i]);
            met = met && now <= reach && (now >= -reach || sign * gap[i] > reach);
        }
        if (met)
            return true;
    }
    return false;
}

TEST(Intersection, SweptAxisAlignedBoxesMeetWithinFifteenSpans) {
    Random random(40);
    Answers answers;
    const Vector3 halfA(1, 1.5f, 2), halfB(3, 2.5f, 2);
    for (int run = 0; run < 1500; ++run) {
        const Vector3 a = random.Place(15), b = random.Place(15);
        const Vector3 va = random.Place(1.5f), vb = random.Place(1.5f);
        const Vec gap = Of(b) - Of(a), v = Of(vb) - Of(va);
        const bool tight = BoxesMeet({gap.x, gap.y, gap.z}, {v.x, v.y, v.z}, 3.95);
        const bool wide = BoxesMeet({gap.x, gap.y, gap.z}, {v.x, v.y, v.z}, 4.05);
        answers.Expect(DynamicAABBToAABB(AABB(a, halfA), va, AABB(b, halfB), vb),
                       tight == wide ? tight - 0.5 : 0);
    }
    const auto met = [](const Vector3& position, const Vector3& velocity) {
        const Vector3 half(1, 1, 1);
        return DynamicAABBToAABB(AABB({}, half), {}, AABB(position, half), velocity);
    };
    EXPECT_TRUE(met({17, 0, 0}, {-1, 0, 0})) << "at 15 exactly";
    EXPECT_FALSE(met({17.01f, 0, 0}, {-1, 0, 0}));
    EXPECT_TRUE(met({-17, 0, 0}, {1, 0, 0}));
    EXPECT_TRUE(met({2, 2, -2}, {0, 0, 0})) << "touching at rest";
    EXPECT_FALSE(met({2.01f, 0, 0}, {0, 0, 0}));
    EXPECT_FALSE(met({-2.01f, 0, 0}, {0, 1, 0}));
    EXPECT_TRUE(met({4, 12, 0}, {-2, -1, 0})) << "past along X long before it is there along Y";
}

TEST(Intersection, AnyNumbersGiveTheSameAnswerEachTime) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float numbers[] = {0, 1, -2, 3e38f, 1e-38f, infinity, -infinity, std::nanf("")};
    Random random(41);
    const auto number = [&] { return numbers[random.Int(0, 7)]; };
    for (int run = 0; run < 3000; ++run) {
        Vector3 p, q, v;
        for (Vector3* vector : {&p, &q, &v})
            vector->Set(number(), number(), number());
        const Sphere s(p, number()), other(q, number());
        const AABB a(q, p), b(p, v);
        const OBB box(Matrix4::Translation(p) * Matrix4::RotationEuler(v), q), far(Matrix4(), v);
        float t = 0;
        const auto swept = [&] {
            return std::array{
                DynamicAABBToAABB(a, v, b, q),         DynamicSphereToOBB(s, v, box, q),
                DynamicSphereToSphere(s, v, other, q), OBBToOBB(box, far),
                RayToSphere(Ray(v, q), s, &t),         RayToOBB(Ray(v, q), box)};
        };
        EXPECT_EQ(swept(), swept());
    }
}

} // namespace
