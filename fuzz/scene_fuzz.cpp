// SPDX-License-Identifier: MIT
//
// Any bytes as a scene file: it is read, run for some frames, written, read again and run again, or
// raises a standard exception. Afterwards every entity is back in its pool.
#include "fuzz/fuzz.hpp"
#include "worlds/meadow/meadow.hpp"

#include <exception>
#include <string>

namespace {

void RunFrames(Vorn::Scene& scene) {
    scene.Init();
    for (int frame = 0; frame < 40; ++frame)
        Worlds::RunFrame(scene);
}

} // namespace

FUZZ_TARGET(data, size) {
    static const Worlds::Meadow meadow;
    Vorn::Scene scene;
    try {
        scene.Deserialize(std::string(data, size));
        RunFrames(scene);
        scene.SerializeEntities();
        const std::string text = scene.Serialize();
        scene.Deinit();
        scene.Deserialize(text);
        RunFrames(scene);
    } catch (const std::exception&) {
        // Said, not hidden: what counts is the state that it leaves.
    }
    scene.Deinit();
    Fuzz::Require(scene.EntityList().empty(), "an entity stayed in the scene");
    Fuzz::Require(meadow.Out() == 0, "an entity stayed out of its pool");
}
