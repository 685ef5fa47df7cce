// SPDX-License-Identifier: MIT
//
// The evaluation of a skeleton, against a plain twin in double precision and against poses worked
// out by hand.
#include "tests/resource/model_file.hpp"

#include <array>
#include <cmath>
#include <deque>

namespace {

using namespace ResourceTests;
using Exact::Vec;
using Vorn::Mesh;

/// A turn, then a shift: what every matrix of a skeleton is.
struct Pose {
    Vec turn = Exact::W, at;
};

Vec Turned(const Vec& turn, const Vec& v) {
    const Vec back{-turn.x, -turn.y, -turn.z, turn.w};
    return Exact::Hamilton(Exact::Hamilton(turn, {v.x, v.y, v.z, 0}), back);
}
Pose operator*(const Pose& a, const Pose& b) {
    return {Exact::Hamilton(a.turn, b.turn), a.at + Turned(a.turn, b.at)};
}
Pose Inverse(const Pose& pose) {
    const Vec back{-pose.turn.x, -pose.turn.y, -pose.turn.z, pose.turn.w};
    return {back, -1 * Turned(back, pose.at)};
}
Pose PoseOf(const float* atAndTurn) {
    const auto wide = [&](int i) { return static_cast<double>(atAndTurn[i]); };
    return {{wide(3), wide(4), wide(5), wide(6)}, {wide(0), wide(1), wide(2)}};
}
/// Unit quaternions the shorter way, also beyond the ends.
Vec Between(const Vec& a, Vec b, double t) {
    double cosine = Exact::Dot(a, b);
    if (cosine < 0)
        b = -1 * b, cosine = -cosine;
    const double arc = std::acos(std::min(1.0, cosine));
    if (arc < 1e-4)
        return a + t * (b - a);
    return (std::sin((1 - t) * arc) / std::sin(arc)) * a + (std::sin(t * arc) / std::sin(arc)) * b;
}

/// The rules in their simplest form, over the model that the file was written from.
class Twin {
public:
    explicit Twin(const Model& model) : mModel(model), mCursor(model.bones.size(), 1) {}

    void Update(float dt) {
        time += dt;
        if (time >= mModel.duration) {
            time = 0;
            mCursor.assign(mCursor.size(), 1);
        }
        world.clear();
        for (std::size_t b = 0; b < mModel.bones.size(); ++b) {
            const auto& keys = mModel.tracks[b];
            if (mCursor[b] + 1 < keys.size() && keys[mCursor[b]].f[0] < time)
                ++mCursor[b];
            const std::int32_t parent = mModel.bones[b].parent;
            const Pose local = Local(b);
            world.push_back(parent < 0 ? local : world[static_cast<std::size_t>(parent)] * local);
        }
    }
    Pose Final(std::size_t b) const { return world[b] * PoseOf(mModel.bones[b].f + 7); }

    float time = 0;
    std::vector<Pose> world;

private:
    Pose Local(std::size_t b) const {
        const auto& keys = mModel.tracks[b];
        const Bone& bone = mModel.bones[b];
        if (keys.empty()) {
            const Pose back = Inverse(PoseOf(bone.f + 7));
            if (bone.parent < 0)
                return back;
            return PoseOf(mModel.bones[static_cast<std::size_t>(bone.parent)].f + 7) * back;
        }
        if (keys.size() == 1)
            return PoseOf(keys[0].f + 1);
        const Key &a = keys[mCursor[b] - 1], &z = keys[mCursor[b]];
        const Pose from = PoseOf(a.f + 1), to = PoseOf(z.f + 1);
        if (a.f[0] == z.f[0])
            return to;
        const double alpha =
            static_cast<double>(time - a.f[0]) / static_cast<double>(z.f[0] - a.f[0]);
        return {Between(from.turn, to.turn, alpha), from.at + alpha * (to.at - from.at)};
    }

    const Model& mModel;
    std::vector<std::size_t> mCursor;
};

class Skeletons : public Tests::RecorderTest {
protected:
    ~Skeletons() override { Vorn::ModelLoader().Release(mesh); }
    Mesh& Read(const Model& model) {
        Vorn::ModelLoader().Open(folder.File("model", model.File()), mesh);
        return mesh;
    }
    /// A root of keys along X at 10 times their number, and turned by that many degrees about Z.
    static Model Mover(const std::vector<float>& times, float duration) {
        Model model;
        model.bones.push_back({std::string("b\0", 2), -1, {}});
        model.bones[0].f[6] = model.bones[0].f[13] = 1;
        model.duration = duration;
        auto& track = model.tracks.emplace_back();
        for (std::size_t i = 0; i < times.size(); ++i) {
            const double half = static_cast<double>(i) * Exact::Pi / 36;
            track.push_back({{times[i], 10 * static_cast<float>(i), 0, 0, 0, 0,
                              Exact::Single(std::sin(half)), Exact::Single(std::cos(half))}});
        }
        return model;
    }
    /// The root's place as the number of a key, from shift and turn alike.
    double Number() const {
        const Vorn::Matrix4& m = mesh.mBones[0].mWorld;
        const double turn = std::atan2(static_cast<double>(m.m[4]), static_cast<double>(m.m[0]));
        const double shift = static_cast<double>(m.m[3]) / 10;
        EXPECT_NEAR(turn * 18 / Exact::Pi, shift, 1e-4);
        return shift;
    }
    void ExpectAt(float dt, double number, float time) {
        Vorn::UpdateSkeleton(dt, mesh);
        EXPECT_NEAR(Number(), number, 1e-5) << dt;
        EXPECT_EQ(mesh.mTime, time) << dt;
    }

    Mesh mesh;
};

/// Within a ten-thousandth of the distance of what it moves from the origin.
void ExpectMoves(const Vorn::Matrix4& m, const Pose& pose, const std::string& what) {
    const double reach = 2 + Exact::Length(pose.at);
    for (const Vec& point : {Vec{}, Exact::X, Exact::Y, Exact::Z}) {
        const Vec expected = pose.at + Turned(pose.turn, point);
        const Vec actual = Exact::Apply(m, point + Exact::W);
        EXPECT_LT(Exact::Length(actual - Exact::W - expected), 2e-4 * reach) << what;
    }
}

TEST_F(Skeletons, MoveAsThePlainRulesSay) {
    Random random(54);
    for (int round = 0; round < 60; ++round) {
        Model model;
        AddSkeleton(random, model, random.Int(1, 12), round % 3 == 0 ? 0 : 2, 6);
        Mesh moving;
        Vorn::ModelLoader().Open(folder.File("model", model.File()), moving);
        Twin twin(model);
        for (int frame = 0; frame < 60; ++frame) {
            const int kind = random.Int(0, 9);
            const float dt = kind == 0 ? 0 : random.Float(0, kind == 1 ? 0.6f : 0.12f);
            twin.Update(dt);
            Vorn::UpdateSkeleton(dt, moving);
            ASSERT_EQ(moving.mTime, twin.time);
            for (std::size_t b = 0; b < model.bones.size(); ++b) {
                const std::string what =
                    std::to_string(round) + '/' + std::to_string(frame) + '/' + std::to_string(b);
                ExpectMoves(moving.mBones[b].mWorld, twin.world[b], what);
                ExpectMoves(moving.mBones[b].mFinal, twin.Final(b), what);
            }
            ASSERT_FALSE(HasFailure());
        }
        Vorn::ModelLoader().Release(moving);
    }
}

TEST_F(Skeletons, InterpolateBetweenTwoKeysAndDropWhatIsBeyondTheLoop) {
    Read(Mover({0, 1}, 1));
    ExpectAt(0.25f, 0.25, 0.25f);
    ExpectAt(0, 0.25, 0.25f);
    ExpectAt(0.5f, 0.75, 0.75f);
    ExpectAt(0.25f, 0, 0); // exactly the end
    ExpectAt(0.5f, 0.5, 0.5f);
    ExpectAt(1.5f, 0, 0);
    EXPECT_EQ(mesh.mBones[0].mCurrentKey, 1u);
}

TEST_F(Skeletons, ACursorGoesOneKeyAFrameAndRunsPastItMeanwhile) {
    Read(Mover({0, 1, 2, 3}, 4));
    ExpectAt(2.5f, 2.5, 2.5f);
    EXPECT_EQ(mesh.mBones[0].mCurrentKey, 2u); // keys 1 and 2, at one and a half
    ExpectAt(0, 2.5, 2.5f);
    EXPECT_EQ(mesh.mBones[0].mCurrentKey, 3u);
    ExpectAt(1, 3.5, 3.5f); // behind the last key too
    ExpectAt(0.5f, 0, 0);
    EXPECT_EQ(mesh.mBones[0].mCurrentKey, 1u);

    // Where the keys are no straight line the interval shows.
    Model bent = Mover({0, 1, 2, 3}, 4);
    for (std::size_t k = 0; k < 4; ++k)
        bent.tracks[0][k].f[2] = static_cast<float>(k * k);
    Mesh again;
    Vorn::ModelLoader().Open(folder.File("model", bent.File()), again);
    Vorn::UpdateSkeleton(2.5f, again);
    EXPECT_NEAR(static_cast<double>(again.mBones[0].mWorld.m[7]), 1 + 1.5 * 3, 1e-5);
    Vorn::ModelLoader().Release(again);
}

TEST_F(Skeletons, OneKeyHoldsAndOfEqualTimesTheLaterStands) {
    Read(Mover({0.5f}, 1));
    ExpectAt(0.75f, 0, 0.75f);
    Mesh equal;
    Vorn::ModelLoader().Open(folder.File("model", Mover({0.5f, 0.5f}, 1).File()), equal);
    Vorn::UpdateSkeleton(0.1f, equal);
    EXPECT_NEAR(static_cast<double>(equal.mBones[0].mWorld.m[3]), 10, 1e-5);
    Vorn::ModelLoader().Release(equal);
}

TEST_F(Skeletons, ABoneWithoutKeysMovesWithItsParentAndLeavesVerticesWhereTheyWere) {
    Random random(63);
    Model model;
    AddSkeleton(random, model, 3, 2, 3);
    for (std::size_t b = 0; b < 3; ++b)
        model.bones[b].parent = static_cast<int>(b) - 1;
    model.tracks[1].clear();
    model.tracks[2].clear();
    Read(model);
    Vorn::UpdateSkeleton(0.3f, mesh);
    for (int i = 0; i < 16; ++i) {
        const auto element = [i](const Vorn::Matrix4& m) { return static_cast<double>(m.m[i]); };
        EXPECT_NEAR(element(mesh.mBones[1].mFinal), element(mesh.mBones[0].mFinal), 1e-5);
        EXPECT_NEAR(element(mesh.mBones[2].mFinal), element(mesh.mBones[0].mFinal), 1e-5);
    }
}

TEST_F(Skeletons, BindAndOffsetAreShiftTimesTurn) {
    Random random(64);
    Model model;
    AddSkeleton(random, model, 2, 2, 2);
    Read(model);
    for (std::size_t b = 0; b < 2; ++b) {
        ExpectMoves(mesh.mBones[b].mBind, PoseOf(model.bones[b].f), "bind");
        ExpectMoves(mesh.mBones[b].mOffset, PoseOf(model.bones[b].f + 7), "offset");
    }
}

} // namespace
