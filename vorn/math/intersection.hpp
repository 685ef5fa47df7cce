// SPDX-License-Identifier: MIT
//
// Tests of volumes against each other: at rest, along a ray, and swept, which are named Dynamic.
//
//   float t;
//   if (Vorn::RayToSphere(Vorn::Ray(eye, direction), target, &t))
//       hit = eye + direction * t;
//
// Touching counts as a hit at rest. A volume with a NaN hits nothing, or what a test says without
// looking at it. Velocities are displacements over the span of time 0 to 1. An out-parameter must
// not be null unless its test says that it may.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/point2.hpp"
#include "vorn/math/volumes.hpp"

namespace Vorn {

/// Both bounds included.
VORN_API bool Point2ToRect(const Point2& p, const Point2& min, const Point2& max);
/// Plane::CollisionCheck.
VORN_API bool CrossPlaneCheck(const Vector3& p, const Vector3& v, const Plane& plane);

VORN_API bool SphereSphere(const Sphere& a, const Sphere& b);
VORN_API bool AABBToAABB(const AABB& a, const AABB& b);
/// Tries the six normals of `a` for an axis that separates, and no other: boxes that only another
/// axis separates count as hit, and swapping the two may change the answer. A box without size, or
/// whose normals are stale, has no axis.
VORN_API bool OBBToOBB(const OBB& a, const OBB& b);
/// No test: false.
VORN_API bool SphereOBB(const Sphere& sphere, const OBB& box);

/// `*t` is the distance to the sphere along the ray, whose direction has length 1: the way in, or
/// from inside the way out; 0 from inside with the centre behind. Written on true only.
VORN_API bool RayToSphere(const Ray& ray, const Sphere& sphere, float* t);
/// `*hit` is where a ray from outside, whose direction has length 1, enters. A ray from inside hits
/// nothing. Written on true only.
VORN_API bool RayToSphereIntersection(const Ray& ray, const Sphere& sphere, Vector3* hit);
/// Refuses a plane whose point lies behind the origin, whatever of the plane lies in front. `hit`
/// may be null; it is written whenever the point lies ahead, also where the result is false.
VORN_API bool RayToPlaneIntersection(const Ray& ray, const Plane& plane, Vector3* hit);
/// The same with a face: a point on its rim passes. `hit` may be null; a point outside the rim
/// leaves it.
VORN_API bool RayToBoundedPlaneIntersection(const Ray& ray, const FlatPlane& face, Vector3* hit);
VORN_API bool RayToAABB(const Ray& ray, const AABB& box);
VORN_API bool RayToOBB(const Ray& ray, const OBB& box);

/// Looks fifteen spans ahead.
VORN_API bool DynamicAABBToAABB(const AABB& a, const Vector3& va, const AABB& b, const Vector3& vb);
/// No test: false.
VORN_API bool DynamicOBBToOBB(const OBB& a, const Vector3& va, const OBB& b, const Vector3& vb);
/// Against the six infinite planes of the box: coming within reach of any of them is a hit, however
/// far from the box.
VORN_API bool DynamicOBBToSphere(const OBB& box, const Vector3& vBox, const Sphere& sphere,
                                 const Vector3& vSphere);
VORN_API bool DynamicSphereToOBB(const Sphere& sphere, const Vector3& vSphere, const OBB& box,
                                 const Vector3& vBox);
/// False where neither moves against the other, overlapping or not.
VORN_API bool DynamicSphereToSphere(const Sphere& a, const Vector3& va, const Sphere& b,
                                    const Vector3& vb);
/// Against the infinite plane through the face's corner 0. `t` is the time of contact, and the
/// result says whether it is below 1; `hit` is the point of contact, or the centre where the sphere
/// touches from the start. Both stay where the sphere does not come nearer.
VORN_API bool DynamicSphereToPlane(const Sphere& sphere, const Vector3& v, const FlatPlane& face,
                                   float& t, Vector3& hit);

} // namespace Vorn
