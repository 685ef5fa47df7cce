// SPDX-License-Identifier: MIT
//
// The skeletons of a crowd, one after the other, a sixtieth of a second on: from the keys to what
// the shader gets, 1,000 of them. The argument is the number of bones of each; a bone has 60 keys.
// "One" is a crowd of one model, whose entities share its bones, as they do in the engine; "Kinds"
// one of 20 models, drawn in turn; "Strangers" 1,000 models.
#include "tests/support/plain_skeleton.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t Skeletons = 1000;
constexpr int Keys = 60;
constexpr float Seconds = 3.0f;

class Maker {
public:
    /// A tree in which most bones continue the one before, as limbs do, and others branch off.
    void Make(Vorn::Mesh& mesh, int bones) {
        mesh.mDuration = Seconds;
        mesh.mTime = real(0.0f, Seconds);
        mesh.mBones.resize(static_cast<std::size_t>(bones));
        mesh.mBoneCount = static_cast<std::uint32_t>(bones);
        mesh.mFinalTransforms = new D3DXMATRIX[mesh.mBoneCount]();
        mesh.mRoots = {0};
        for (int i = 0; i < bones; ++i) {
            Vorn::Bone& bone = mesh.mBones[static_cast<std::size_t>(i)];
            if (i > 0) {
                bone.mParent = real(0.0f, 1.0f) < 0.7f ? i - 1 : whole(0, i - 1);
                mesh.mBones[static_cast<std::size_t>(bone.mParent)].mChildren.push_back(i);
            }
            bone.mOffset = Vorn::Matrix4::Translation(place()) * turn().QuatToMatrix();
        }
        // Behind the bones, as a model file has them and its reader asks for their memory.
        for (Vorn::Bone& bone : mesh.mBones)
            makeKeys(bone, mesh.mTime);
    }

private:
    void makeKeys(Vorn::Bone& bone, float time) {
        Vorn::Quaternion rotation = turn();
        bone.mKeys.reserve(Keys);
        for (int k = 0; k < Keys; ++k) {
            const float at = Seconds * static_cast<float>(k) / (Keys - 1);
            bone.mKeys.push_back({at, place(), rotation});
            // Up to a third of a right angle from key to key, often hardly at all.
            const float angle = real(0.0f, 1.0f);
            rotation *= Vorn::Quaternion(place(), 0.5f * angle * angle);
            if (at < time)
                bone.mCurrentKey = static_cast<std::uint32_t>(std::min(k + 1, Keys - 1));
        }
        bone.mKeyCount = Keys;
    }
    float real(float low, float high) {
        return low + (high - low) * static_cast<float>(mRandom() % 100'000) / 100'000.0f;
    }
    int whole(int low, int high) {
        return low + static_cast<int>(mRandom() % static_cast<unsigned int>(high - low + 1));
    }
    Vorn::Vector3 place() { return {real(-1, 1), real(-1, 1), real(0.1f, 1)}; }
    Vorn::Quaternion turn() {
        Vorn::Vector3 axis = place();
        axis.Normalize();
        return {axis, real(-3, 3)};
    }

    std::mt19937 mRandom{7};
};

using Skeleton = std::unique_ptr<Vorn::Mesh>;

std::vector<Skeleton> MakeCrowd(std::size_t count, int bones) {
    Maker maker;
    std::vector<Skeleton> crowd;
    for (std::size_t i = 0; i < count; ++i)
        maker.Make(*crowd.emplace_back(std::make_unique<Vorn::Mesh>()), bones);
    return crowd;
}

template <typename Update>
void Time(benchmark::State& state, std::size_t distinct, Update&& update) {
    const std::vector<Skeleton> crowd = MakeCrowd(distinct, static_cast<int>(state.range(0)));
    for (auto _ : state)
        for (std::size_t i = 0; i < Skeletons; ++i)
            update(*crowd[i % distinct]);
}

void Ours(benchmark::State& state, std::size_t distinct) {
    Time(state, distinct, [](Vorn::Mesh& mesh) {
        Vorn::UpdateSkeleton(1.0f / 60, mesh);
        Vorn::StoreFinalTransforms(mesh);
    });
}

void Plain(benchmark::State& state, std::size_t distinct) {
    Time(state, distinct, [](Vorn::Mesh& mesh) {
        Tests::PlainUpdateSkeleton(1.0f / 60, mesh);
        Tests::PlainStoreFinalTransforms(mesh);
    });
}

void Bones(benchmark::internal::Benchmark* timed) {
    timed->Arg(30)->Arg(60)->Arg(120)->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK_CAPTURE(Ours, One, 1)->Apply(Bones);
BENCHMARK_CAPTURE(Plain, One, 1)->Apply(Bones);
BENCHMARK_CAPTURE(Ours, Kinds, 20)->Apply(Bones);
BENCHMARK_CAPTURE(Plain, Kinds, 20)->Apply(Bones);
BENCHMARK_CAPTURE(Ours, Strangers, Skeletons)->Apply(Bones);
BENCHMARK_CAPTURE(Plain, Strangers, Skeletons)->Apply(Bones);
