// SPDX-License-Identifier: MIT
#include "vorn/resource/model_loader.hpp"

#include "vorn/core/file.hpp"
#include "vorn/core/huge_memory.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"
#include "vorn/resource/mesh.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vorn {

// The file's values are little-endian, and are taken as they lie.
static_assert(std::endian::native == std::endian::little);

namespace {

constexpr std::uint64_t MaxBeyondFile = std::uint64_t{256} << 20;
constexpr std::uint32_t SkinnedKind = 1;
constexpr std::size_t ChunkWords = 8;
constexpr std::size_t StaticSize = 32;
constexpr std::size_t SkinnedSize = 52;
constexpr std::size_t KeySize = 32;
constexpr std::size_t MaxName = 107; // 108 with the NUL
// Small enough to stay in the cache between the file and where its values go.
constexpr std::size_t ChunkSize = std::size_t{64} << 10;

using Floats7 = std::array<float, 7>;

void ReadStatic(const char* record, Vertex_UTx& vertex) {
    std::memcpy(&vertex.x, record, 12);
    std::memcpy(&vertex.nx, record + 12, 12);
    std::memcpy(&vertex.u, record + 24, 4);
    std::memcpy(&vertex.v, record + 28, 4);
}

void ReadSkinned(const char* record, Vertex_UTx& vertex) {
    ReadStatic(record, vertex);
    std::memcpy(vertex.weights, record + 32, 16);
    std::memcpy(vertex.bones, record + 48, 4);
}

// A value that is cut in its middle does not count: the bytes of whole ones. Only the bones, at the
// end, are single bytes.
std::size_t WholeValues(std::size_t bytes) {
    return bytes >= 48 ? bytes : bytes / 4 * 4;
}

// As by `new[]`, with the advice between the memory and its first use.
Vertex_UTx* MakeVertices(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<Vertex_UTx>); // so delete[] needs no count
    auto* const vertices = static_cast<Vertex_UTx*>(::operator new[](count * sizeof(Vertex_UTx)));
    PreferHugePages(vertices, count * sizeof(Vertex_UTx));
    std::uninitialized_value_construct_n(vertices, count);
    return vertices;
}

void SetTransform(const Floats7& f, Vector3& translation, Quaternion& rotation, Matrix4& matrix) {
    translation = Vector3(f[0], f[1], f[2]);
    const float wxyz[] = {f[6], f[3], f[4], f[5]};
    rotation = Quaternion(wxyz);
    matrix = Matrix4::Translation(translation) * rotation.QuatToMatrix();
}

} // namespace

void ModelLoader::Open(std::string path, Mesh& mesh) {
    mesh.Clear();
    // Fit for the next file, also if memory runs out.
    const auto close = [](std::ifstream* file) {
        file->close();
        file->clear();
    };
    const std::unique_ptr<std::ifstream, decltype(close)> closer(&mFile, close);
    mWhole = OpenFile(path, mFile, mLeft);
    if (mWhole) {
        skip(ChunkWords);
        ExtractMesh(mesh);
        // Behind a chunk the file may end; what is not there reads as nothing.
        bool whole = mWhole;
        const bool hasSkeleton = mLeft > 0;
        ExtractSkeleton(mesh);
        whole = whole && (mWhole || !hasSkeleton);
        const bool hasAnimation = mLeft > 0;
        ExtractAnimation(mesh);
        mWhole = whole && (mWhole || !hasAnimation);
    }
    Reload(mesh);
}

void ModelLoader::Reload(Mesh& mesh) {
    constexpr std::uint64_t most = std::numeric_limits<unsigned int>::max();
    mesh.mVertexBuffer = nullptr;
    mesh.mIndexBuffer = nullptr;
    Graphic* const graphic = Graphic::Instance();
    const std::uint64_t vertexBytes = std::uint64_t{mesh.mVertexCount} * sizeof(Vertex_UTx);
    if (vertexBytes <= most)
        graphic->CreateVertexBuffer(static_cast<unsigned int>(vertexBytes), mesh.mVertexBuffer,
                                    mesh.mVertices);
    const std::uint64_t indexBytes = std::uint64_t{mesh.mIndexCount} * sizeof(unsigned int);
    if (indexBytes <= most)
        graphic->CreateIndexBuffer(static_cast<unsigned int>(indexBytes), mesh.mIndexBuffer,
                                   mesh.mIndices);
}

void ModelLoader::Release(Mesh& mesh) {
    ReleaseObject(mesh.mVertexBuffer);
    ReleaseObject(mesh.mIndexBuffer);
}

void ModelLoader::ExtractMesh(Mesh& mesh) {
    skip(ChunkWords);
    const bool skinned = readCount() == SkinnedKind;
    extractIndices(mesh);
    extractVertices(mesh, skinned);
}

void ModelLoader::extractIndices(Mesh& mesh) {
    const std::uint32_t count = trustedCount(readCount(), sizeof(unsigned int));
    mesh.mIndices = new unsigned int[count];
    PreferHugePages(mesh.mIndices, count * sizeof(unsigned int));
    mesh.mIndexCount = count;
    const std::size_t whole =
        read(mesh.mIndices, count * sizeof(unsigned int)) / sizeof(unsigned int);
    std::fill(mesh.mIndices + whole, mesh.mIndices + count, 0u);
}

void ModelLoader::extractVertices(Mesh& mesh, bool skinned) {
    const std::size_t size = skinned ? SkinnedSize : StaticSize;
    const std::uint32_t count = trustedCount(readCount(), size);
    mesh.mVertices = MakeVertices(count);
    mesh.mVertexCount = count;
    mesh.mSkinned = skinned && count > 0;

    const std::size_t perChunk = ChunkSize / size;
    const auto chunk = std::make_unique_for_overwrite<char[]>(perChunk * size);
    for (std::uint32_t done = 0; done < count;) {
        const std::size_t wanted = std::min<std::size_t>(count - done, perChunk) * size;
        const std::size_t got = read(chunk.get(), wanted);
        const std::size_t records = got / size;
        if (skinned)
            for (std::size_t i = 0; i < records; ++i)
                ReadSkinned(chunk.get() + i * size, mesh.mVertices[done + i]);
        else
            for (std::size_t i = 0; i < records; ++i)
                ReadStatic(chunk.get() + i * size, mesh.mVertices[done + i]);
        done += static_cast<std::uint32_t>(records);
        if (got < wanted) {
            if (const std::size_t part = WholeValues(got % size)) {
                char record[SkinnedSize] = {};
                std::memcpy(record, chunk.get() + records * size, part);
                ReadSkinned(record, mesh.mVertices[done]);
            }
            break;
        }
    }
}

void ModelLoader::ExtractSkeleton(Mesh& mesh) {
    skip(ChunkWords);
    const std::uint32_t count = readCount();
    while (mesh.mBones.size() < count && extractBone(mesh)) {
    }
    mesh.mBoneCount = static_cast<std::uint32_t>(mesh.mBones.size());
    if (mesh.mBoneCount > 0)
        mesh.mFinalTransforms = new D3DXMATRIX[mesh.mBoneCount]();
}

bool ModelLoader::extractBone(Mesh& mesh) {
    std::uint8_t nameLength = 0;
    char name[std::numeric_limits<std::uint8_t>::max() + 1] = {};
    std::int32_t parent = -1;
    Floats7 bind, offset;
    if (read(&nameLength, 1) < 1 || read(name, nameLength) < nameLength ||
        read(&parent, sizeof parent) < sizeof parent || read(&bind, sizeof bind) < sizeof bind ||
        read(&offset, sizeof offset) < sizeof offset)
        return false;

    Bone bone;
    bone.mName.assign(name, std::min(std::strlen(name), MaxName));
    SetTransform(bind, bone.mBindTranslation, bone.mBindRotation, bone.mBind);
    SetTransform(offset, bone.mOffsetTranslation, bone.mOffsetRotation, bone.mOffset);
    const std::size_t index = mesh.mBones.size();
    if (parent >= 0 && static_cast<std::size_t>(parent) < index) {
        bone.mParent = parent;
        mesh.mBones[static_cast<std::size_t>(parent)].mChildren.push_back(static_cast<int>(index));
    } else {
        mesh.mRoots.push_back(static_cast<int>(index));
    }
    mesh.mBones.push_back(std::move(bone));
    return true;
}

void ModelLoader::ExtractAnimation(Mesh& mesh) {
    skip(ChunkWords);
    float duration = 0.0f;
    if (read(&duration, sizeof duration) == sizeof duration)
        mesh.mDuration = duration;
    const std::uint32_t tracks = readCount();
    std::uint32_t track = 0;
    for (; track < tracks && mLeft > 0; ++track) {
        const std::uint32_t keys = readCount();
        if (track < mesh.mBones.size())
            extractKeys(mesh.mBones[track], keys);
        else
            skip(std::uint64_t{keys} * KeySize);
    }
    mWhole = mWhole && track == tracks;
}

void ModelLoader::extractKeys(Bone& bone, std::uint32_t count) {
    const std::uint64_t there = std::min<std::uint64_t>(count, mLeft / KeySize);
    bone.mKeys.reserve(static_cast<std::size_t>(there));
    std::array<float, KeySize / sizeof(float)> f;
    for (std::uint64_t i = 0; i < there && read(&f, sizeof f) == sizeof f; ++i) {
        const float wxyz[] = {f[7], f[4], f[5], f[6]};
        bone.mKeys.push_back({f[0], Vector3(f[1], f[2], f[3]), Quaternion(wxyz)});
    }
    bone.mKeyCount = static_cast<std::uint32_t>(bone.mKeys.size());
    if (there < count) {
        skip(mLeft); // a key that is cut in its middle
        mWhole = false;
    }
}

/// Bytes that the file still had.
std::size_t ModelLoader::read(void* data, std::size_t size) {
    mFile.read(static_cast<char*>(data), static_cast<std::streamsize>(size));
    const auto got = static_cast<std::size_t>(mFile.gcount());
    mLeft = got == size ? mLeft - std::min<std::uint64_t>(mLeft, size) : 0;
    mWhole = mWhole && got == size;
    return got;
}

void ModelLoader::skip(std::uint64_t size) {
    mWhole = mWhole && size <= mLeft;
    size = std::min(size, mLeft);
    // A seek drops what the stream has read ahead, which is dear where little is passed over often.
    if (size <= ChunkSize)
        mFile.ignore(static_cast<std::streamsize>(size));
    else
        mFile.seekg(static_cast<std::streamoff>(size), std::ios::cur);
    mLeft -= size;
}

std::uint32_t ModelLoader::readCount() {
    std::uint32_t count = 0;
    return read(&count, sizeof count) == sizeof count ? count : 0;
}

std::uint32_t ModelLoader::trustedCount(std::uint32_t count, std::size_t recordSize) {
    const std::uint64_t asked = std::uint64_t{count} * recordSize;
    if (asked <= mLeft + MaxBeyondFile)
        return count;
    mWhole = false;
    return static_cast<std::uint32_t>(mLeft / recordSize);
}

} // namespace Vorn
