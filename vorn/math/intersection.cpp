// SPDX-License-Identifier: MIT
#include "vorn/math/intersection.hpp"

#include "vorn/math/box_shape.hpp"

#include <algorithm>
#include <cmath>

namespace Vorn {

namespace {

constexpr float NearZero = 0.00001f;
constexpr float TinyDivisor = 0.000001f;

// Where the ray meets the plane through `point`, as a multiple of the direction. False where the
// point lies behind the origin.
bool MeetPlane(const Ray& ray, const Vector3& point, const Vector3& normal, float& t) {
    if (ray.direction.DotProduct(point - ray.origin) < 0.0f)
        return false;
    float approach = normal.DotProduct(ray.direction);
    if (std::abs(approach) < NearZero)
        approach = TinyDivisor;
    t = (normal.DotProduct(point) - normal.DotProduct(ray.origin)) / approach;
    return true;
}

// One axis of the sweep of b along a. False where the two miss each other on it.
bool SweepAxis(float v, float aMin, float aMax, float bMin, float bMax, float& first, float& last) {
    if (v < 0.0f) {
        if (bMax < aMin)
            return false;
        if (bMin > aMax)
            first = std::max(first, (aMax - bMin) / v);
        else if (bMax > aMin)
            last = std::min(last, (aMin - bMax) / v);
    } else {
        v = std::abs(v); // from -0, a division would give the wrong infinity
        if (bMax < aMin)
            first = std::max(first, (aMin - bMax) / v);
        else if (aMax > bMin)
            last = std::min(last, (aMax - bMin) / v);
        if (bMin > aMax)
            return false;
    }
    return first <= last;
}

} // namespace

bool Point2ToRect(const Point2& p, const Point2& min, const Point2& max) {
    return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y;
}

bool CrossPlaneCheck(const Vector3& p, const Vector3& v, const Plane& plane) {
    return plane.CollisionCheck(p, v);
}

bool SphereSphere(const Sphere& a, const Sphere& b) {
    return a.center.Distance(b.center) <= a.radius + b.radius;
}

bool AABBToAABB(const AABB& a, const AABB& b) {
    const Vector3 aMin = a.center - a.halfExtents, aMax = a.center + a.halfExtents;
    const Vector3 bMin = b.center - b.halfExtents, bMax = b.center + b.halfExtents;
    return bMax.x >= aMin.x && bMin.x <= aMax.x && bMax.y >= aMin.y && bMin.y <= aMax.y &&
           bMax.z >= aMin.z && bMin.z <= aMax.z;
}

bool OBBToOBB(const OBB& a, const OBB& b) {
    const BoxCorners first = CornersOf(a.transform, a.extents);
    const BoxCorners second = CornersOf(b.transform, b.extents);
    // The normals as they stand in the box, stale ones too.
    const auto overlapAlong = [&](int face0, int face1, int face2) {
        BoxAxes axes;
        axes.Set(0, a.normals[face0]);
        axes.Set(1, a.normals[face1]);
        axes.Set(2, a.normals[face2]);
        return Overlap(Project(first, axes), Project(second, axes));
    };
    return overlapAlong(1, 3, 4) && overlapAlong(0, 2, 5);
}

bool SphereOBB(const Sphere&, const OBB&) {
    return false;
}

bool RayToSphere(const Ray& ray, const Sphere& sphere, float* t) {
    const Vector3 toCenter = sphere.center - ray.origin;
    const float along = toCenter.DotProduct(ray.direction);
    const float square = sphere.radius * sphere.radius;
    const bool inside = square >= toCenter.SquareLength();
    if (along >= 0.0f) {
        const Vector3 foot = ray.origin + ray.direction * along;
        const float offset = (sphere.center - foot).SquareLength();
        if (!(offset <= square))
            return false;
        const float halfChord = std::sqrt(square - offset);
        const float toFoot = (foot - ray.origin).Length();
        *t = inside ? toFoot + halfChord : toFoot - halfChord;
        return true;
    }
    if (!inside)
        return false;
    *t = 0.0f;
    return true;
}

bool RayToSphereIntersection(const Ray& ray, const Sphere& sphere, Vector3* hit) {
    const Vector3 toCenter = sphere.center - ray.origin;
    const float along = toCenter.DotProduct(ray.direction);
    const float distance = toCenter.SquareLength();
    const float square = sphere.radius * sphere.radius;
    if (square > distance || !(along >= 0.0f))
        return false;
    const float offset = distance - along * along;
    if (!(offset - NearZero <= square))
        return false;
    const bool grazing = offset >= square;
    const float t = grazing ? std::sqrt(distance - square) : along - std::sqrt(square - offset);
    *hit = ray.origin + ray.direction * t;
    return true;
}

bool RayToPlaneIntersection(const Ray& ray, const Plane& plane, Vector3* hit) {
    float t;
    if (!MeetPlane(ray, plane.point, plane.normal, t))
        return false;
    if (hit)
        *hit = ray.origin + ray.direction * t;
    return t > 0.0f;
}

bool RayToBoundedPlaneIntersection(const Ray& ray, const FlatPlane& face, Vector3* hit) {
    float t;
    if (!MeetPlane(ray, face.corners[0], face.normal, t))
        return false;
    const Vector3 contact = ray.origin + ray.direction * t;
    for (int i = 1; i <= 4; ++i) {
        const Vector3& from = face.corners[i - 1];
        const Vector3& to = face.corners[i % 4];
        if ((contact - to).DotProduct(to - from) > 0.0f)
            return false;
    }
    if (hit)
        *hit = contact;
    return t > 0.0f;
}

bool RayToAABB(const Ray& ray, const AABB& box) {
    FlatPlane faces[6];
    box.GetFlatPlane(faces);
    return std::any_of(faces, faces + 6, [&ray](const FlatPlane& face) {
        return RayToBoundedPlaneIntersection(ray, face, nullptr);
    });
}

bool RayToOBB(const Ray& ray, const OBB& box) {
    const Vector3 center = box.Position();
    Vector3 basis[3];
    box.GetBasis(basis);
    const auto intoBox = [&basis](const Vector3& v) {
        return Vector3(v.DotProduct(basis[0]), v.DotProduct(basis[1]), v.DotProduct(basis[2]));
    };
    return RayToAABB(Ray(center + intoBox(ray.origin - center), intoBox(ray.direction)),
                     AABB(center, box.extents / 2));
}

bool DynamicAABBToAABB(const AABB& a, const Vector3& va, const AABB& b, const Vector3& vb) {
    const Vector3 v = vb - va;
    const Vector3 aMin = a.center - a.halfExtents, aMax = a.center + a.halfExtents;
    const Vector3 bMin = b.center - b.halfExtents, bMax = b.center + b.halfExtents;
    float first = 0.0f, last = 15.0f;
    return SweepAxis(v.x, aMin.x, aMax.x, bMin.x, bMax.x, first, last) &&
           SweepAxis(v.y, aMin.y, aMax.y, bMin.y, bMax.y, first, last) &&
           SweepAxis(v.z, aMin.z, aMax.z, bMin.z, bMax.z, first, last);
}

bool DynamicOBBToOBB(const OBB&, const Vector3&, const OBB&, const Vector3&) {
    return false;
}

bool DynamicOBBToSphere(const OBB& box, const Vector3& vBox, const Sphere& sphere,
                        const Vector3& vSphere) {
    FlatPlane faces[6];
    box.GetPlane(faces);
    const Vector3 v = vSphere - vBox;
    return std::any_of(faces, faces + 6, [&](const FlatPlane& face) {
        float t;
        Vector3 hit;
        return DynamicSphereToPlane(sphere, v, face, t, hit);
    });
}

bool DynamicSphereToOBB(const Sphere& sphere, const Vector3& vSphere, const OBB& box,
                        const Vector3& vBox) {
    return DynamicOBBToSphere(box, vBox, sphere, vSphere);
}

bool DynamicSphereToSphere(const Sphere& a, const Vector3& va, const Sphere& b, const Vector3& vb) {
    const Vector3 relative = va - vb;
    const float length = relative.Length();
    if (length == 0.0f)
        return false;
    float t;
    return RayToSphere(Ray(a.center, relative / length), Sphere(b.center, a.radius + b.radius),
                       &t) &&
           t < length;
}

bool DynamicSphereToPlane(const Sphere& sphere, const Vector3& v, const FlatPlane& face, float& t,
                          Vector3& hit) {
    float side;
    if (!SphereReachesPlane(sphere, v, face.corners[0], face.normal, t, side))
        return false;
    hit = t == 0.0f ? sphere.center : sphere.center + v * t - face.normal * side;
    return t < 1.0f;
}

} // namespace Vorn
