// SPDX-License-Identifier: MIT
#pragma once

class Vorn3DColorSigned;

namespace Vorn {

class Matrix4;
class Point2;
class Quaternion;
class Vector3;
class Vector4;
struct AABB;
struct FlatPlane;
struct OBB;
struct Plane;
struct Ray;
struct Sphere;
struct Vertex_UTx;

} // namespace Vorn
