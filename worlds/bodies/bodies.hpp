// SPDX-License-Identifier: MIT
//
// A cube full of bodies, as dense as one likes, for benchmarks of the physics step.
//
//   Worlds::Bodies bodies(10'000, Worlds::Bodies::Shape::Box, 2.0);
//   bodies.Step();                        // moves them and walks over their pairs
//   bodies.Hits();
#pragma once

#include "vorn/vorn.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace Worlds {

class Bodies {
public:
    enum class Shape { Sphere, Box, Mixed };

    /// So many bodies, registered for as long as the object lives, of which each meets `touching`
    /// others that follow it in the list; all in one heap where that is negative.
    Bodies(std::size_t count, Shape shape, double touching);
    Bodies(const Bodies&) = delete;
    Bodies& operator=(const Bodies&) = delete;
    ~Bodies();

    /// One physics step. Every body flies on, up to a twentieth of its size along each axis, and
    /// turns back at the sides of the cube.
    void Step();
    /// Moves the bodies as Step does, and nothing else.
    void Move();

    /// Pairs that were reported so far.
    std::size_t Hits() const { return mCount.hits / 2; }
    const std::vector<Vorn::PhysicsCmpt*>& List() const { return mList; }

private:
    class Count : public Vorn::FunctorBase1 {
    public:
        void operator()(Vorn::CollisionData*) override { ++hits; }
        std::size_t hits = 0;
    };

    void spread(double edge);
    void keepInside();

    Count mCount;
    std::vector<std::unique_ptr<Vorn::Entity>> mEntities;
    std::vector<Vorn::PhysicsCmpt*> mList;
    std::vector<Vorn::Vector3> mPlaces; // in a cube of edge 1
    float mEdge = 0.0f;
};

} // namespace Worlds
