// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class Material;
class MaterialManager;
class MeshManager;
class ModelLoader;
class RscPackManager;
class TextureManager;
struct Bone;
struct BoneKey;
struct ColorRamp;
struct Mesh;
struct RscPack;
struct Texture;
template <typename T>
class RscManager;

} // namespace Vorn
