// SPDX-License-Identifier: MIT
//
// Written from the layout of the file; it shares nothing with the engine's reader, which takes
// whatever it finds.
#include "tools/check/model.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace Check {
namespace {

/// Ends the reading; its text is the finding.
struct EndsEarly {
    std::string where;
};

class ModelCheck {
public:
    ModelCheck(const std::string& file, std::string_view bytes, Findings& findings)
        : mFile(file), mBytes(bytes), mFindings(findings) {}

    void Run() {
        try {
            skip(8, "the header");
            readMesh();
            // A static model may end here.
            if (mAt == mBytes.size() && !mIsSkinned)
                return;
            readSkeleton();
            readAnimation();
            if (mAt != mBytes.size())
                tell(fmt::format("{} bytes behind the end", mBytes.size() - mAt));
        } catch (const EndsEarly& end) {
            tell("the file ends early, in " + end.where);
        }
    }

private:
    void tell(const std::string& message) { mFindings.Error("model", {mFile}, message); }

    void skip(std::uint64_t size, const std::string& where) {
        if (size > mBytes.size() - mAt)
            throw EndsEarly{where};
        mAt += size;
    }
    template <typename T>
    T take(const std::string& where) {
        skip(sizeof(T), where);
        T value;
        std::memcpy(&value, mBytes.data() + mAt - sizeof value, sizeof value);
        return value;
    }
    template <typename T>
    T at(std::size_t offset) const {
        T value;
        std::memcpy(&value, mBytes.data() + offset, sizeof value);
        return value;
    }
    // Of `count` floats.
    bool areFinite(std::size_t offset, std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i)
            if (!std::isfinite(at<float>(offset + 4 * i)))
                return false;
        return true;
    }

    void readMesh() {
        skip(8, "the mesh");
        mIsSkinned = take<std::uint32_t>("the mesh") == 1;
        const auto indexCount = take<std::uint32_t>("the mesh");
        const std::size_t indices = mAt;
        skip(std::uint64_t{4} * indexCount, "the indices");
        const auto vertexCount = take<std::uint32_t>("the mesh");
        if (indexCount % 3 != 0)
            tell(fmt::format("{} indices are no whole triangles", indexCount));
        for (std::size_t i = 0; i < indexCount; ++i)
            if (const auto index = at<std::uint32_t>(indices + 4 * i); index >= vertexCount) {
                tell(fmt::format("index {} is vertex {}, and there are {}", i, index, vertexCount));
                break;
            }
        readVertices(vertexCount);
    }
    void readVertices(std::uint32_t count) {
        const std::size_t size = mIsSkinned ? 52 : 32;
        const std::size_t first = mAt;
        skip(std::uint64_t{size} * count, "the vertices");
        for (std::size_t i = 0; i < count; ++i)
            if (!areFinite(first + size * i, mIsSkinned ? 12 : 8)) {
                tell(fmt::format("vertex {} has a value that is no number", i));
                break;
            }
        for (std::size_t i = 0; mIsSkinned && i < count; ++i)
            for (std::size_t j = 0; j < 4; ++j)
                if (at<float>(first + size * i + 32 + 4 * j) != 0.0f)
                    mMostBone = std::max(mMostBone, at<std::uint8_t>(first + size * i + 48 + j));
    }
    void readSkeleton() {
        skip(8, "the skeleton");
        mBones = take<std::uint32_t>("the skeleton");
        if (mIsSkinned && mMostBone >= mBones)
            tell(fmt::format("a vertex hangs on bone {}, and there are {}", mMostBone, mBones));
        if (mBones > 256)
            tell(fmt::format("{} bones; shaders have 256", mBones));
        for (std::uint32_t i = 0; i < mBones; ++i)
            readBone(i);
    }
    void readBone(std::uint32_t i) {
        const std::string where = fmt::format("bone {}", i);
        const auto length = take<std::uint8_t>(where);
        const std::size_t name = mAt;
        skip(length, where);
        if (length == 0 || length > 108 ||
            mBytes.substr(name, length).find('\0') == std::string_view::npos)
            tell(where + " has a name that is not 1 to 108 bytes with a NUL");
        const auto parent = take<std::int32_t>(where);
        if (parent != -1 && (parent < 0 || static_cast<std::uint32_t>(parent) >= i))
            tell(fmt::format("{} has the parent {}, which is no earlier bone", where, parent));
        const std::size_t transforms = mAt;
        skip(56, where);
        if (!areFinite(transforms, 14))
            tell(where + " has a transform with a value that is no number");
    }
    void readAnimation() {
        skip(8, "the animation");
        const auto duration = take<float>("the animation");
        const auto tracks = take<std::uint32_t>("the animation");
        if (tracks != mBones)
            tell(fmt::format("{} tracks for {} bones", tracks, mBones));
        if (!std::isfinite(duration) || duration < 0.0f || (tracks > 0 && duration == 0.0f))
            tell(fmt::format("the animation lasts {} seconds", duration));
        for (std::uint32_t i = 0; i < tracks; ++i)
            readTrack(i);
    }
    void readTrack(std::uint32_t i) {
        const std::string where = fmt::format("track {}", i);
        const auto keys = take<std::uint32_t>(where);
        const std::size_t first = mAt;
        skip(std::uint64_t{32} * keys, where);
        if (mIsSkinned && keys < 2)
            tell(fmt::format("{} has {} keys; it wants two", where, keys));
        for (std::size_t j = 0; j < keys; ++j) {
            const std::size_t key = first + 32 * j;
            if (!areFinite(key, 8))
                return tell(fmt::format("key {} of {} has a value that is no number", j, where));
            if (j > 0 && at<float>(key) <= at<float>(key - 32))
                return tell(fmt::format("key {} of {} is not later than the one before", j, where));
        }
    }

    const std::string& mFile;
    std::string_view mBytes;
    Findings& mFindings;
    std::size_t mAt = 0;
    bool mIsSkinned = false;
    std::uint8_t mMostBone = 0;
    std::uint32_t mBones = 0;
};

} // namespace

void CheckModel(const std::string& file, std::string_view bytes, Findings& findings) {
    ModelCheck(file, bytes, findings).Run();
}

} // namespace Check
