// SPDX-License-Identifier: MIT
#include "tools/import/read_assimp.hpp"

#include "tools/import/gltf_curves.hpp"
#include "tools/import/normals.hpp"

#include <assimp/GltfMaterial.h>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>
#include <assimp/commonMetaData.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <string_view>

namespace Import {
namespace {

class Progress : public Assimp::ProgressHandler {
public:
    explicit Progress(std::function<void(double)> tell) : mTell(std::move(tell)) {}
    bool Update(float part) override {
        mTell(std::clamp(static_cast<double>(part), 0.0, 1.0));
        return true;
    }

private:
    std::function<void(double)> mTell;
};

std::string text(const aiString& s) {
    return {s.C_Str()};
}

Vec3 vector(const aiVector3D& v) {
    return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

Quat rotation(const aiQuaternion& q) {
    return Normalized({static_cast<double>(q.x), static_cast<double>(q.y), static_cast<double>(q.z),
                       static_cast<double>(q.w)});
}

Affine affine(const aiMatrix4x4& m) {
    Affine a;
    for (unsigned int row = 0; row < 3; ++row) {
        for (unsigned int column = 0; column < 3; ++column)
            a.m[3 * row + column] = static_cast<double>(m[row][column]);
    }
    a.t = {static_cast<double>(m.a4), static_cast<double>(m.b4), static_cast<double>(m.c4)};
    return a;
}

bool finite(const Affine& a) {
    return Finite(a.t) &&
           std::all_of(a.m.begin(), a.m.end(), [](double e) { return std::isfinite(e); });
}

std::array<double, 4> color(const aiColor4D& c) {
    std::array<double, 4> channels{static_cast<double>(c.r), static_cast<double>(c.g),
                                   static_cast<double>(c.b), static_cast<double>(c.a)};
    for (double& channel : channels)
        channel = std::isfinite(channel) ? std::max(channel, 0.0) : 0.0;
    return channels;
}

/// One walk over an Assimp scene; the members fill `mScene` in the order of their calls.
class Reader {
public:
    explicit Reader(const aiScene& from) : mFrom(from) {}

    SourceScene Read() {
        nodes();
        for (unsigned int i = 0; i < mFrom.mNumMaterials; ++i)
            material(*mFrom.mMaterials[i]);
        for (unsigned int i = 0; i < mFrom.mNumMeshes; ++i)
            mesh(*mFrom.mMeshes[i]);
        for (unsigned int i = 0; i < mFrom.mNumAnimations; ++i)
            animation(*mFrom.mAnimations[i]);
        mScene.cameras = mFrom.mNumCameras;
        mScene.lights = mFrom.mNumLights;
        return std::move(mScene);
    }

private:
    void note(std::string line) { mScene.readerNotes.push_back(std::move(line)); }

    void nodes() {
        struct Entry {
            const aiNode* node;
            std::size_t parent;
        };
        std::vector<Entry> open{{mFrom.mRootNode, None}};
        std::size_t repeated = 0;
        while (!open.empty()) {
            const Entry entry = open.back();
            open.pop_back();
            const std::size_t index = mScene.nodes.size();
            Affine local = affine(entry.node->mTransformation);
            if (!finite(local)) {
                note(fmt::format("node \"{}\" has numbers that are none: taken as unmoved",
                                 text(entry.node->mName)));
                local = {};
            }
            mScene.nodes.push_back({text(entry.node->mName), entry.parent, local});
            repeated += mNodes.emplace(text(entry.node->mName), index).second ? 0U : 1U;
            for (unsigned int i = 0; i < entry.node->mNumMeshes; ++i)
                instance(entry.node->mMeshes[i], index);
            for (unsigned int i = entry.node->mNumChildren; i-- > 0;)
                open.push_back({entry.node->mChildren[i], index});
        }
        if (repeated > 0)
            note(fmt::format("{} node(s) have the name of another one: bones and animations of "
                             "that name go to the first",
                             repeated));
    }

    void instance(unsigned int mesh, std::size_t node) {
        if (mesh < mFrom.mNumMeshes)
            mScene.instances.push_back({mesh, node});
    }

    std::size_t findNode(const aiString& name) const {
        const auto found = mNodes.find(text(name));
        return found == mNodes.end() ? None : found->second;
    }

    void texture(const aiMaterial& from, SourceMaterial& to) {
        for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}) {
            aiString path;
            if (from.GetTexture(type, 0, &path) != aiReturn_SUCCESS || path.length == 0)
                continue;
            to.texture.path = text(path);
            if (const aiTexture* embedded = mFrom.GetEmbeddedTexture(path.C_Str()))
                embed(*embedded, to.texture);
            aiUVTransform transform;
            if (from.Get(AI_MATKEY_UVTRANSFORM(type, 0), transform) == aiReturn_SUCCESS)
                to.texture.wantsTransform = !(transform.mTranslation == aiVector2D(0, 0)) ||
                                            !(transform.mScaling == aiVector2D(1, 1)) ||
                                            transform.mRotation != 0.0f;
            int uv = 0;
            from.Get(AI_MATKEY_UVWSRC(type, 0), uv);
            mUvOfMaterial.back() = static_cast<unsigned int>(std::max(uv, 0));
            break;
        }
        static constexpr std::pair<aiTextureType, std::string_view> others[] = {
            {aiTextureType_SPECULAR, "specular"},
            {aiTextureType_AMBIENT, "ambient"},
            {aiTextureType_EMISSIVE, "emissive"},
            {aiTextureType_HEIGHT, "height"},
            {aiTextureType_NORMALS, "normals"},
            {aiTextureType_SHININESS, "shininess"},
            {aiTextureType_OPACITY, "opacity"},
            {aiTextureType_DISPLACEMENT, "displacement"},
            {aiTextureType_LIGHTMAP, "light map"},
            {aiTextureType_REFLECTION, "reflection"},
            {aiTextureType_METALNESS, "metalness"},
            {aiTextureType_DIFFUSE_ROUGHNESS, "roughness"},
            {aiTextureType_AMBIENT_OCCLUSION, "occlusion"},
        };
        for (const auto& [type, word] : others) {
            if (from.GetTextureCount(type) > 0)
                to.otherTextures.emplace_back(word);
        }
    }

    /// Bytes of an image file as they are; bare pixels become a TGA file, its rows from the top.
    static void embed(const aiTexture& from, SourceTexture& to) {
        if (from.mHeight == 0) {
            to.embedded.assign(reinterpret_cast<const char*>(from.pcData), from.mWidth);
            return;
        }
        if (from.mWidth > 0xFFFF || from.mHeight > 0xFFFF)
            return;
        const auto byte = [](unsigned int value) { return static_cast<char>(value & 0xFF); };
        to.embedded.assign(18, '\0');
        to.embedded[2] = 2;
        to.embedded[12] = byte(from.mWidth);
        to.embedded[13] = byte(from.mWidth >> 8);
        to.embedded[14] = byte(from.mHeight);
        to.embedded[15] = byte(from.mHeight >> 8);
        to.embedded[16] = 32;
        to.embedded[17] = 0x28;
        to.embedded.append(reinterpret_cast<const char*>(from.pcData),
                           std::size_t{from.mWidth} * from.mHeight * 4);
    }

    void material(const aiMaterial& from) {
        SourceMaterial to;
        mUvOfMaterial.push_back(0);
        aiString name;
        if (from.Get(AI_MATKEY_NAME, name) == aiReturn_SUCCESS)
            to.name = text(name);

        aiColor4D value;
        if (from.Get(AI_MATKEY_BASE_COLOR, value) == aiReturn_SUCCESS ||
            from.Get(AI_MATKEY_COLOR_DIFFUSE, value) == aiReturn_SUCCESS)
            to.diffuse = color(value);
        if (from.Get(AI_MATKEY_COLOR_AMBIENT, value) == aiReturn_SUCCESS)
            to.ambient = color(value);
        if (from.Get(AI_MATKEY_COLOR_SPECULAR, value) == aiReturn_SUCCESS)
            to.specular = color(value);
        if (from.Get(AI_MATKEY_COLOR_EMISSIVE, value) == aiReturn_SUCCESS)
            to.emissive = color(value);
        float number = 0;
        if (from.Get(AI_MATKEY_SHININESS, number) == aiReturn_SUCCESS && std::isfinite(number) &&
            number > 0)
            to.shininess = static_cast<double>(number);

        if (from.Get(AI_MATKEY_OPACITY, number) == aiReturn_SUCCESS && number >= 0 && number < 1)
            to.diffuse[3] = static_cast<double>(number);
        aiString mode;
        const bool blends =
            from.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == aiReturn_SUCCESS && text(mode) != "OPAQUE";
        to.transparency = blends || to.diffuse[3] < 1;
        int shading = 0;
        if (from.Get(AI_MATKEY_SHADING_MODEL, shading) == aiReturn_SUCCESS)
            to.lighting = shading != aiShadingMode_NoShading;

        texture(from, to);
        mScene.materials.push_back(std::move(to));
    }

    void bones(const aiMesh& from, SourceMesh& to) {
        if (from.mNumBones == 0)
            return;
        to.influences.resize(from.mNumVertices);
        for (unsigned int b = 0; b < from.mNumBones; ++b) {
            const aiBone& bone = *from.mBones[b];
            const std::size_t node = findNode(bone.mName);
            const Affine offset = affine(bone.mOffsetMatrix);
            if (node == None || !finite(offset)) {
                note(fmt::format("mesh \"{}\": bone \"{}\" has no node or no finite offset, its "
                                 "weights are left out",
                                 to.name, text(bone.mName)));
                continue;
            }
            for (unsigned int w = 0; w < bone.mNumWeights; ++w) {
                const aiVertexWeight& weight = bone.mWeights[w];
                if (weight.mVertexId < from.mNumVertices && std::isfinite(weight.mWeight) &&
                    weight.mWeight > 0)
                    to.influences[weight.mVertexId].push_back(
                        {to.bones.size(), static_cast<double>(weight.mWeight)});
            }
            to.bones.push_back({node, offset});
        }
        for (std::vector<SourceInfluence>& influences : to.influences) {
            double sum = 0;
            for (const SourceInfluence& influence : influences)
                sum += influence.weight;
            for (SourceInfluence& influence : influences)
                influence.weight /= sum;
        }
    }

    void faces(const aiMesh& from, SourceMesh& to) {
        for (unsigned int f = 0; f < from.mNumFaces; ++f) {
            const aiFace& face = from.mFaces[f];
            if (face.mNumIndices != 3) {
                ++to.pointsAndLines;
                continue;
            }
            const std::array<std::uint32_t, 3> corners{face.mIndices[0], face.mIndices[1],
                                                       face.mIndices[2]};
            if (std::all_of(corners.begin(), corners.end(),
                            [&](std::uint32_t i) { return i < from.mNumVertices; }))
                to.triangles.push_back(corners);
        }
    }

    void mesh(const aiMesh& from) {
        SourceMesh to;
        to.name = text(from.mName);
        to.material = std::min<std::size_t>(from.mMaterialIndex, mScene.materials.size() - 1);
        to.morphTargets = from.mNumAnimMeshes;
        to.uvSets = from.GetNumUVChannels();
        to.colors = from.GetNumColorChannels() > 0;

        // The set that the material's texture lies on, or else the first.
        unsigned int set = mUvOfMaterial[to.material];
        if (set >= AI_MAX_NUMBER_OF_TEXTURECOORDS || !from.HasTextureCoords(set))
            set = 0;
        for (unsigned int v = 0; v < from.mNumVertices; ++v) {
            to.positions.push_back(vector(from.mVertices[v]));
            if (from.HasNormals())
                to.normals.push_back(vector(from.mNormals[v]));
            if (from.HasTextureCoords(set)) {
                const aiVector3D& uv = from.mTextureCoords[set][v];
                to.uvs.emplace_back(static_cast<double>(uv.x), static_cast<double>(uv.y));
            }
        }
        faces(from, to);
        bones(from, to);
        if (!from.HasNormals())
            MakeNormals(to);
        mScene.meshes.push_back(std::move(to));
    }

    template <class T, class Key, class Value>
    static void keys(std::vector<SourceKey<T>>& to, const Key* from, unsigned int count,
                     double perSecond, Value value) {
        for (unsigned int i = 0; i < count; ++i) {
            if (std::isfinite(from[i].mTime))
                to.push_back({from[i].mTime / perSecond, value(from[i].mValue), {}, {}});
        }
        std::stable_sort(to.begin(), to.end(),
                         [](const auto& a, const auto& b) { return a.time < b.time; });
    }

    void animation(const aiAnimation& from) {
        SourceAnimation to;
        to.name = text(from.mName);
        double perSecond = from.mTicksPerSecond;
        if (!(perSecond > 0) || !std::isfinite(perSecond)) {
            perSecond = 25;
            note(fmt::format("animation \"{}\" does not say how fast its ticks run: 25 a second",
                             to.name));
        }
        to.duration = std::isfinite(from.mDuration) ? from.mDuration / perSecond : 0;
        for (unsigned int c = 0; c < from.mNumChannels; ++c) {
            const aiNodeAnim& channel = *from.mChannels[c];
            SourceChannel moves;
            moves.node = findNode(channel.mNodeName);
            if (moves.node == None) {
                ++to.strayChannels;
                continue;
            }
            keys(moves.positions.keys, channel.mPositionKeys, channel.mNumPositionKeys, perSecond,
                 vector);
            keys(moves.rotations.keys, channel.mRotationKeys, channel.mNumRotationKeys, perSecond,
                 rotation);
            keys(moves.scales.keys, channel.mScalingKeys, channel.mNumScalingKeys, perSecond,
                 vector);
            const auto bad = [](const SourceKey<Vec3>& key) { return !Finite(key.value); };
            std::erase_if(moves.positions.keys, bad);
            std::erase_if(moves.scales.keys, bad);
            for (const auto* list : {&moves.positions.keys, &moves.scales.keys}) {
                if (!list->empty())
                    to.duration = std::max(to.duration, list->back().time);
            }
            if (!moves.rotations.keys.empty())
                to.duration = std::max(to.duration, moves.rotations.keys.back().time);
            to.channels.push_back(std::move(moves));
        }
        to.morphChannels = from.mNumMorphMeshChannels + from.mNumMeshChannels;
        mScene.animations.push_back(std::move(to));
    }

    const aiScene& mFrom;
    SourceScene mScene;
    std::map<std::string, std::size_t> mNodes;
    std::vector<unsigned int> mUvOfMaterial;
};

/// The turn from a file's axes to ours, of which each is told as a number and a sign. Assimp hands
/// on the axes of an FBX file without turning anything.
void axes(const aiMetadata& data, SourceScene& scene) {
    scene.axes.m = {};
    std::array<bool, 3> used{};
    std::size_t row = 0;
    for (const std::string axis : {"CoordAxis", "UpAxis", "FrontAxis"}) {
        auto number = static_cast<std::int32_t>(row);
        std::int32_t sign = 1;
        data.Get(axis, number);
        data.Get(axis + "Sign", sign);
        if (axis == "UpAxis")
            scene.axesText = fmt::format("{}{} up", sign < 0 ? "-" : "",
                                         number == 0   ? "X"
                                         : number == 2 ? "Z"
                                                       : "Y");
        if (number < 0 || number > 2 || used[static_cast<std::size_t>(number)]) {
            scene.axes = {};
            scene.readerNotes.push_back("its axes are told wrongly: taken as Y up");
            return;
        }
        used[static_cast<std::size_t>(number)] = true;
        scene.axes.m[3 * row + static_cast<std::size_t>(number)] = sign < 0 ? -1 : 1;
        ++row;
    }
}

/// What the file says about its units and axes. Only FBX leaves both to us: the reader has
/// Collada's in the root's matrix, and glTF has no choice.
void unitsAndAxes(const aiScene& from, SourceScene& scene) {
    aiString format;
    if (from.mMetaData && from.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format))
        scene.format = text(format);
    scene.axesText = "right-handed, Y up";
    scene.unitText = "none told, taken as metres";
    if (scene.format.starts_with("glTF"))
        scene.unitText = "metres";
    if (scene.format.starts_with("Collada")) {
        scene.unitText = "metres (the file's unit is in its root's scale)";
        scene.axesText = "right-handed, Y up (the file's axes are in its root's rotation)";
    }
    if (!scene.format.starts_with("Autodesk FBX"))
        return;
    // Written as one of several types of number by different exporters.
    double centimetres = 1;
    float narrow = 1;
    if (!from.mMetaData->Get("UnitScaleFactor", centimetres) &&
        from.mMetaData->Get("UnitScaleFactor", narrow))
        centimetres = static_cast<double>(narrow);
    if (!std::isfinite(centimetres) || centimetres <= 0)
        centimetres = 1;
    scene.unit = centimetres / 100;
    scene.unitText = fmt::format("{:g} centimetres", centimetres);
    axes(*from.mMetaData, scene);
}

} // namespace

SourceScene ReadSource(const std::string& path, const std::function<void(double)>& progress) {
    Assimp::Importer importer;
    importer.SetProgressHandler(new Progress(progress));
    // Not validated: that refuses whole files for what is passed over here, an animation of morph
    // targets only for one.
    const aiScene* from = importer.ReadFile(path, aiProcess_Triangulate | aiProcess_SortByPType);
    if (!from || !from->mRootNode)
        throw std::runtime_error(importer.GetErrorString());
    if (from->mNumMaterials == 0 && from->mNumMeshes > 0)
        throw std::runtime_error("its meshes have no materials");
    SourceScene scene = Reader(*from).Read();
    unitsAndAxes(*from, scene);
    if (scene.format.starts_with("glTF2"))
        ReadGltfCurves(path, scene);
    else if (!scene.animations.empty())
        scene.readerNotes.push_back("between two keys of an animation the reader knows straight "
                                    "ways only: where the source eases, bake its animation first");
    return scene;
}

} // namespace Import
