// SPDX-License-Identifier: MIT
//
// A step over bodies that move a little each time: the engine's walk over pairs, the plain walk,
// and Bullet's discrete collision pass with the same bodies. The first argument is the number of
// bodies.
#include "tests/support/plain_walk.hpp"
#include "worlds/bodies/bodies.hpp"

#include <benchmark/benchmark.h>

#include <btBulletCollisionCommon.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Shape = Worlds::Bodies::Shape;

class BulletTwin {
public:
    explicit BulletTwin(const Worlds::Bodies& bodies) : mBodies(bodies) {
        for (const Vorn::PhysicsCmpt* body : bodies.List()) {
            const Vorn::Vector3 e = body->Scale();
            if (body->VolumeType() == Vorn::BoxVolume)
                mShapes.push_back(std::make_unique<btBoxShape>(btVector3(e.x, e.y, e.z) / 2));
            else
                mShapes.push_back(std::make_unique<btSphereShape>(body->BoundingSphere().radius));
            btCollisionObject& object =
                *mObjects.emplace_back(std::make_unique<btCollisionObject>());
            object.setCollisionShape(mShapes.back().get());
            object.setCollisionFlags(0);
            Vorn::Vector3 axes[3];
            body->BoundingOBB().GetBasis(axes);
            object.getWorldTransform().getBasis().setValue(axes[0].x, axes[1].x, axes[2].x,
                                                           axes[0].y, axes[1].y, axes[2].y,
                                                           axes[0].z, axes[1].z, axes[2].z);
            place(object, *body);
            mWorld.addCollisionObject(&object);
        }
    }
    ~BulletTwin() {
        for (const auto& object : mObjects)
            mWorld.removeCollisionObject(object.get());
    }

    void Step() {
        for (std::size_t i = 0; i < mObjects.size(); ++i)
            place(*mObjects[i], *mBodies.List()[i]);
        mWorld.performDiscreteCollisionDetection();
    }

private:
    static void place(btCollisionObject& object, const Vorn::PhysicsCmpt& body) {
        const Vorn::Vector3 p = body.Position();
        object.getWorldTransform().setOrigin(btVector3(p.x, p.y, p.z));
    }

    const Worlds::Bodies& mBodies;
    btDefaultCollisionConfiguration mConfiguration;
    btCollisionDispatcher mDispatcher{&mConfiguration};
    btDbvtBroadphase mBroadphase;
    btCollisionWorld mWorld{&mDispatcher, &mBroadphase, &mConfiguration};
    std::vector<std::unique_ptr<btCollisionShape>> mShapes;
    std::vector<std::unique_ptr<btCollisionObject>> mObjects;
};

void Walk(benchmark::State& state, Shape shape, double touching) {
    Worlds::Bodies bodies(static_cast<std::size_t>(state.range(0)), shape, touching);
    bodies.Step();
    const std::size_t perStep = bodies.Hits();
    for (auto _ : state)
        bodies.Step();
    state.counters["touching"] = static_cast<double>(perStep) / static_cast<double>(state.range(0));
}

void PlainWalk(benchmark::State& state, Shape shape, double touching) {
    Worlds::Bodies bodies(static_cast<std::size_t>(state.range(0)), shape, touching);
    for (auto _ : state) {
        bodies.Move();
        Tests::PlainWalk(bodies.List());
    }
}

void Bullet(benchmark::State& state, Shape shape, double touching) {
    Worlds::Bodies bodies(static_cast<std::size_t>(state.range(0)), shape, touching);
    BulletTwin twin(bodies);
    twin.Step();
    for (auto _ : state) {
        bodies.Move();
        twin.Step();
    }
}

void RegisterAll() {
    const std::pair<std::string, Shape> shapes[] = {
        {"spheres", Shape::Sphere}, {"boxes", Shape::Box}, {"mixed", Shape::Mixed}};
    const std::pair<std::string, double> densities[] = {
        {"thin", 0.1}, {"medium", 2.0}, {"dense", 10.0}, {"heap", -1.0}};
    for (const auto& shape : shapes)
        for (const auto& density : densities)
            for (const int count : {100, 300, 1000, 3000, 10'000, 50'000}) {
                const bool heap = density.second < 0.0;
                const auto add = [&](const std::string& which, auto function) {
                    const std::string name = which + "/" + shape.first + "/" + density.first;
                    benchmark::RegisterBenchmark(name.c_str(), function, shape.second,
                                                 density.second)
                        ->Arg(count)
                        ->Unit(benchmark::kMillisecond);
                };
                // A heap of so many has a billion hits, and each of them costs Bullet a kilobyte.
                if (heap && count > 10'000)
                    continue;
                add("Walk", Walk);
                if (count <= 10'000)
                    add("PlainWalk", PlainWalk);
                if (!heap || count <= 300)
                    add("Bullet", Bullet);
            }
}

} // namespace

int main(int argc, char** argv) {
    RegisterAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
