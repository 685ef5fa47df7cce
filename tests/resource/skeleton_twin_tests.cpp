// SPDX-License-Identifier: MIT
//
// UpdateSkeleton against the plain twin: skeletons that no file could hold, and values from hell.
#include "tests/math/exact.hpp"
#include "tests/support/plain_skeleton.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

using Exact::Random;
using Vorn::Bone;
using Vorn::Mesh;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

Vorn::Vector3 Place(Random& random) {
    return {random.Float(-2, 2), random.Float(-2, 2), random.Float(-2, 2)};
}

/// Of length 1, and often close to the one before.
Vorn::Quaternion Turn(Random& random) {
    const Exact::Vec q = Exact::Turn(random.Axis(), random(-3, 3));
    const float wxyz[] = {Exact::Single(q.w), Exact::Single(q.x), Exact::Single(q.y),
                          Exact::Single(q.z)};
    return Vorn::Quaternion(wxyz);
}
Vorn::Quaternion TurnAfter(Random& random, Vorn::Quaternion q) {
    const int kind = random.Int(0, 3);
    if (kind == 0)
        return Turn(random);
    q *= Vorn::Quaternion(Place(random), random.Float(0, kind == 1 ? 0.01f : 0.3f));
    if (random.Int(0, 3) == 0)
        q *= -1.0f; // the same turn, to which the way is the longer one
    return q;
}

Mesh& operator<<(Mesh& mesh, const Mesh& other) {
    mesh.Clear();
    mesh.mBones = other.mBones;
    mesh.mRoots = other.mRoots;
    mesh.mBoneCount = other.mBoneCount;
    mesh.mDuration = other.mDuration;
    mesh.mTime = other.mTime;
    return mesh;
}

void MakeKeys(Random& random, Bone& bone, int count) {
    float time = random.Float(-0.2f, 0.3f);
    Vorn::Quaternion turn = Turn(random);
    bone.mKeys.clear();
    for (int k = 0; k < count; ++k) {
        bone.mKeys.push_back({time, Place(random), turn});
        turn = TurnAfter(random, turn);
        time += random.Float(0.02f, 0.3f);
    }
}

void MakeSkeleton(Random& random, Mesh& mesh, int bones, int fewestKeys) {
    mesh.Clear();
    mesh.mDuration = random.Float(0.5f, 3);
    mesh.mBoneCount = static_cast<std::uint32_t>(bones);
    for (int i = 0; i < bones; ++i) {
        Bone& bone = mesh.mBones.emplace_back();
        bone.mParent = random.Int(-1, i - 1);
        (bone.mParent < 0 ? mesh.mRoots
                          : mesh.mBones[static_cast<std::size_t>(bone.mParent)].mChildren)
            .push_back(i);
        bone.mOffset = Vorn::Matrix4::Translation(Place(random)) * Turn(random).QuatToMatrix();
        MakeKeys(random, bone, random.Int(fewestKeys, 12));
    }
}

/// Within a ten-thousandth of the size of the matrix, or both no numbers or infinite.
void ExpectSame(const Vorn::Matrix4& actual, const Vorn::Matrix4& expected) {
    float size = 1;
    for (const float f : expected.m)
        if (std::isfinite(f))
            size = std::max(size, std::abs(f));
    for (int i = 0; i < 16; ++i) {
        const float a = actual.m[i], e = expected.m[i];
        if (std::isfinite(e))
            EXPECT_LE(std::abs(a - e), 1e-4f * size) << i;
        else
            EXPECT_TRUE(std::isnan(e) ? std::isnan(a) : a == e) << i << ' ' << a << ' ' << e;
    }
}

void ExpectSame(const Mesh& actual, const Mesh& expected) {
    ASSERT_EQ(actual.mTime, expected.mTime);
    for (std::size_t b = 0; b < expected.mBones.size(); ++b) {
        SCOPED_TRACE("bone " + std::to_string(b));
        ASSERT_EQ(actual.mBones[b].mCurrentKey, expected.mBones[b].mCurrentKey);
        ExpectSame(actual.mBones[b].mWorld, expected.mBones[b].mWorld);
        ExpectSame(actual.mBones[b].mFinal, expected.mBones[b].mFinal);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

void UpdateBoth(float dt, Mesh& mesh, Mesh& twin) {
    Vorn::UpdateSkeleton(dt, mesh);
    Tests::PlainUpdateSkeleton(dt, twin);
    ExpectSame(mesh, twin);
}

float AFrame(Random& random) {
    const float longest[] = {0, 0.017f, 0.1f, 1.0f};
    return random.Float(0, longest[random.Int(0, 3)]);
}

TEST(SkeletonTwins, AgreeFromFrameToFrame) {
    Random random(71);
    for (int round = 0; round < 120; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Mesh mesh, twin;
        // Around the four, the eight and the 256 that are taken together, too.
        const int bones = round < 3 ? 255 + round : random.Int(0, 40);
        MakeSkeleton(random, mesh, bones, round % 2 == 0 ? 2 : 0);
        twin << mesh;
        for (int frame = 0; frame < 40 && !HasFailure(); ++frame)
            UpdateBoth(AFrame(random), mesh, twin);
    }
}

TEST(SkeletonTwins, AgreeWhereTheHostChangesAnythingBetweenTwoUpdates) {
    Random random(72);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Mesh mesh, twin;
        MakeSkeleton(random, mesh, random.Int(1, 20), 1);
        for (int frame = 0; frame < 30 && !HasFailure(); ++frame) {
            Bone& bone = mesh.mBones[static_cast<std::size_t>(
                random.Int(0, static_cast<int>(mesh.mBones.size()) - 1))];
            switch (random.Int(0, 6)) {
            case 0:
                MakeKeys(random, bone, random.Int(0, 5));
                break;
            case 1: // in place
                if (!bone.mKeys.empty())
                    bone.mKeys.back().mPosition = Place(random), bone.mKeys[0].mTime -= 0.1f;
                break;
            case 2:
                bone.mCurrentKey = static_cast<std::uint32_t>(random.Int(0, 14));
                break;
            case 3: // not rigid
                for (float& f : bone.mOffset.m)
                    f = random.Float(-2, 2);
                break;
            case 4:
                for (float& f : bone.mWorld.m) // counts where no walk comes by
                    f = random.Float(-2, 2);
                break;
            case 5:
                mesh.mTime = random.Float(0, mesh.mDuration);
                break;
            default:
                MakeSkeleton(random, mesh, static_cast<int>(mesh.mBones.size()), 1);
            }
            twin << mesh;
            UpdateBoth(AFrame(random), mesh, twin);
        }
    }
}

TEST(SkeletonTwins, AgreeOnHierarchiesThatAreNone) {
    Random random(73);
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Mesh mesh, twin;
        const int bones = random.Int(1, 12);
        MakeSkeleton(random, mesh, bones, 2);
        const auto list = [&](std::vector<int>& indices) {
            for (int i = random.Int(0, 3); i > 0; --i)
                indices.push_back(random.Int(-2, bones + 1));
        };
        list(mesh.mRoots);
        for (Bone& bone : mesh.mBones) {
            if (random.Int(0, 2) == 0)
                bone.mParent = random.Int(-2, bones + 1);
            if (random.Int(0, 2) == 0)
                list(bone.mChildren);
        }
        twin << mesh;
        for (int frame = 0; frame < 5; ++frame)
            UpdateBoth(AFrame(random), mesh, twin);
    }
}

TEST(SkeletonTwins, AgreeOnValuesThatAreNoPose) {
    Random random(74);
    const float values[] = {0,      -0.0f, 1e-30f,   1e-40f,    3,         1e9f,
                            -1e20f, 3e38f, Infinity, -Infinity, NotANumber};
    const auto any = [&] { return values[random.Int(0, std::size(values) - 1)]; };
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Mesh mesh, twin;
        MakeSkeleton(random, mesh, 9, 2);
        for (int changes = random.Int(1, 3); changes > 0; --changes) {
            Bone& bone = mesh.mBones[static_cast<std::size_t>(random.Int(0, 8))];
            Vorn::BoneKey& key = bone.mKeys[static_cast<std::size_t>(random.Int(0, 1))];
            Vorn::Quaternion& q = key.mRotation;
            float* const targets[] = {&key.mTime,
                                      &key.mPosition.x,
                                      &key.mPosition.z,
                                      &q.x,
                                      &q.w,
                                      &bone.mOffset.m[random.Int(0, 15)],
                                      &mesh.mDuration};
            *targets[random.Int(0, std::size(targets) - 1)] = any();
            if (random.Int(0, 5) == 0)
                q = Vorn::Quaternion(); // no turn at all
            if (random.Int(0, 5) == 0)
                q *= random.Float(0.1f, 3); // nor of length 1
        }
        twin << mesh;
        UpdateBoth(random.Int(0, 9) == 0 ? any() : 0.1f, mesh, twin);
        UpdateBoth(0.1f, mesh, twin);
    }
}

TEST(FinalTransforms, AreTheFinalMatricesTransposedAsFarAsTheyGo) {
    Random random(75);
    Mesh mesh;
    MakeSkeleton(random, mesh, 5, 2);
    Vorn::StoreFinalTransforms(mesh); // has no place for them
    mesh.mFinalTransforms = new D3DXMATRIX[5]();
    Vorn::UpdateSkeleton(0.1f, mesh);
    mesh.mBoneCount = 4;
    Vorn::StoreFinalTransforms(mesh);
    for (std::size_t b = 0; b < 4; ++b)
        for (int r = 0; r < 4; ++r)
            for (int c = 0; c < 4; ++c)
                EXPECT_EQ(mesh.mFinalTransforms[b].m[r][c], mesh.mBones[b].mFinal.m[4 * c + r]);
    EXPECT_EQ(mesh.mFinalTransforms[4]._44, 0);
    mesh.mBoneCount = 5;
    mesh.mBones.pop_back();
    Vorn::StoreFinalTransforms(mesh);
    EXPECT_EQ(mesh.mFinalTransforms[4]._44, 0);
}

} // namespace
