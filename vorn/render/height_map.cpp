// SPDX-License-Identifier: MIT
#include "vorn/render/height_map.hpp"

#include "vorn/core/file.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"
#include "vorn/resource/mesh.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <new>

namespace Vorn {

static_assert(std::endian::native == std::endian::little);

namespace {

constexpr std::size_t HeaderSize = 54;
constexpr float Spacing = 0.125f;
// A buffer's length has 32 bits, and vertices take more than the 6 indices of a cell.
constexpr std::uint64_t MaxPixels = std::numeric_limits<unsigned int>::max() / sizeof(Vertex_UTx);

std::size_t PixelCount(int width, int height) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

std::int32_t ReadInt(const char* bytes) {
    std::int32_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

Vector3 PositionOf(const Vertex_UTx& vertex) {
    return {vertex.x, vertex.y, vertex.z};
}

// For the vertices that have a neighbour on each side; on the border the normals stay zero.
void MakeNormals(Vertex_UTx* vertices, std::size_t width, std::size_t height) {
    for (std::size_t r = 1; r + 1 < height; ++r)
        for (std::size_t c = 1; c + 1 < width; ++c) {
            Vertex_UTx* const vertex = vertices + r * width + c;
            const Vector3 across = PositionOf(vertex[-1]) - PositionOf(vertex[1]);
            const Vector3 along = PositionOf(*(vertex + width)) - PositionOf(*(vertex - width));
            Vector3 normal = across.CrossProduct(along);
            normal.Normalize();
            vertex->nx = normal.x;
            vertex->ny = normal.y;
            vertex->nz = normal.z;
        }
}

void MakeCells(unsigned int* index, unsigned int width, unsigned int height) {
    for (unsigned int r = 0; r + 1 < height; ++r)
        for (unsigned int c = 0; c + 1 < width; ++c) {
            const unsigned int a = r * width + c;
            for (const unsigned int corner : {a, a + 1, a + width, a + 1, a + width + 1, a + width})
                *index++ = corner;
        }
}

} // namespace

HeightMap::HeightMap(const HeightMap& map) {
    *this = map;
}

HeightMap& HeightMap::operator=(const HeightMap& map) {
    if (this == &map)
        return *this;
    std::unique_ptr<float[]> heights;
    if (map.mHeights) {
        const std::size_t size = 3 * PixelCount(map.mWidth, map.mHeight);
        heights.reset(new float[size]);
        std::copy_n(map.mHeights, size, heights.get());
    }
    delete[] mHeights;
    mHeights = heights.release();
    mWidth = map.mWidth;
    mHeight = map.mHeight;
    mVertexCount = map.mVertexCount;
    mIndexCount = map.mIndexCount;
    mTriangleCount = map.mTriangleCount;
    mMesh = map.mMesh;
    return *this;
}

bool HeightMap::Init(const char* path) {
    return LoadHeightMap(path) && InitBuffers();
}

bool HeightMap::LoadHeightMap(const char* path) {
    std::ifstream file;
    std::uint64_t size = 0;
    char header[HeaderSize];
    if (!path || !OpenFile(path, file, size) || !file.read(header, sizeof header))
        return false;

    // The size must be one that the file can hold before anything is allocated for it.
    const std::int32_t width = ReadInt(header + 18), height = ReadInt(header + 22);
    if (width <= 0 || height <= 0 || PixelCount(width, height) > MaxPixels)
        return false;
    const std::size_t rowSize = 3 * static_cast<std::size_t>(width);
    const std::size_t padding = static_cast<std::size_t>(width) % 4;
    const std::size_t rows = static_cast<std::size_t>(height);
    if (size < HeaderSize + rows * (rowSize + padding) - padding)
        return false;

    std::unique_ptr<float[]> heights(new (std::nothrow) float[rows * rowSize]);
    const std::unique_ptr<char[]> row(new (std::nothrow) char[rowSize]);
    if (!heights || !row)
        return false;
    float* pixel = heights.get();
    for (std::int32_t r = 0; r < height; ++r) {
        if (!file.read(row.get(), static_cast<std::streamsize>(rowSize)))
            return false;
        file.ignore(static_cast<std::streamsize>(padding));
        for (std::int32_t c = 0; c < width; ++c) {
            *pixel++ = static_cast<float>(c);
            *pixel++ = static_cast<float>(static_cast<unsigned char>(row[3 * std::size_t(c)]));
            *pixel++ = static_cast<float>(r);
        }
    }
    delete[] mHeights;
    mHeights = heights.release();
    mWidth = width;
    mHeight = height;
    return true;
}

bool HeightMap::InitBuffers() {
    if (!mMesh || !mHeights)
        return false;
    const auto width = static_cast<unsigned int>(mWidth),
               height = static_cast<unsigned int>(mHeight);
    const unsigned int vertexCount = width * height;
    const unsigned int indexCount = 6 * (width - 1) * (height - 1);
    std::unique_ptr<Vertex_UTx[]> vertices(new (std::nothrow) Vertex_UTx[vertexCount]);
    std::unique_ptr<unsigned int[]> indices(new (std::nothrow) unsigned int[indexCount]);
    if (!vertices || !indices)
        return false;
    mVertexCount = vertexCount;
    mIndexCount = indexCount;
    mTriangleCount = indexCount / 3;

    const float* height3 = mHeights + 1;
    Vertex_UTx* vertex = vertices.get();
    for (int r = 0; r < mHeight; ++r)
        for (int c = 0; c < mWidth; ++c, ++vertex, height3 += 3) {
            vertex->x = static_cast<float>(c - mWidth / 2) * Spacing;
            vertex->y = *height3 * 4.0f - 800.0f;
            vertex->z = static_cast<float>(r - mHeight / 2) * Spacing;
            vertex->u = static_cast<float>(c) / static_cast<float>(mWidth);
            vertex->v = static_cast<float>(r) / static_cast<float>(mHeight);
        }
    MakeNormals(vertices.get(), width, height);
    MakeCells(indices.get(), width, height);

    // What an earlier Init has left goes; a copy of the mesh would share its buffers.
    Mesh& mesh = *mMesh;
    ReleaseObject(mesh.mVertexBuffer);
    ReleaseObject(mesh.mIndexBuffer);
    Graphic* const graphic = Graphic::Instance();
    graphic->CreateVertexBuffer(vertexCount * static_cast<unsigned int>(sizeof(Vertex_UTx)),
                                mesh.mVertexBuffer, vertices.get());
    const bool made =
        graphic->CreateIndexBuffer(indexCount * static_cast<unsigned int>(sizeof(unsigned int)),
                                   mesh.mIndexBuffer, indices.get());
    delete[] mesh.mVertices;
    delete[] mesh.mIndices;
    mesh.mVertices = vertices.release();
    mesh.mIndices = indices.release();
    mesh.mVertexCount = vertexCount;
    mesh.mIndexCount = indexCount;
    return made;
}

void HeightMap::Draw() {
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!device || !mMesh || !mMesh->mVertexBuffer || !mMesh->mIndexBuffer)
        return;
    device->SetStreamSource(0, mMesh->mVertexBuffer, 0, sizeof(Vertex_UTx));
    device->SetIndices(mMesh->mIndexBuffer);
    device->SetFVF(D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE);
    device->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
    device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, mVertexCount, 0, mTriangleCount);
}

void HeightMap::Shutdown() {
    delete[] mHeights;
    mHeights = nullptr;
    mMesh = nullptr;
}

} // namespace Vorn
