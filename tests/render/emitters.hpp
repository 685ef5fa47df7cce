// SPDX-License-Identifier: MIT
//
// Emitters without a device, by short texts of their data.
//
//   const auto emitter = Make("'Size': 9, " + Pair("SpawnRate", 2, 1));
//   EXPECT_EQ(Emitted(*emitter, {1, 1}), "01");
#pragma once

#include "tests/support/engine_device.hpp"

#include <algorithm>
#include <memory>
#include <sstream>

namespace RenderTests {

using Vorn::EmitterCmpt;
using Vorn::Particle;

/// An object by its members, with either quotation mark.
inline Json::Value Parsed(std::string members) {
    std::replace(members.begin(), members.end(), '\'', '"');
    return Vorn::ParseJson('{' + members + '}');
}
inline std::string Number(double number) {
    std::ostringstream out;
    out << number;
    return out.str();
}
/// Both ends of a value, as "SpawnRate0" and "SpawnRate1".
inline std::string Pair(const std::string& key, double first, double second) {
    return "'" + key + "0': " + Number(first) + ", '" + key + "1': " + Number(second);
}
inline std::string Pair(const std::string& key, double both) {
    return Pair(key, both, both);
}

/// Emits one of three each time that time passes, where the entity stands.
inline const std::string Plain = R"("TexturePath": "spark", "Size": 3, "Particles_Per_Emit": 1,
    "EmitterType": "Smoke", "ParticleLife0": 8, "ParticleLife1": 8)";
class Emitters : public Tests::RecorderTest {
protected:
    Emitters() {
        for (const char* name : {"spark", "Bubble.dds", "bubble.dds", "Bubble.dds2"}) {
            folder.File(std::string("data/img/") + name, Tests::Tga(0xFFFFFFFF));
            textures.Load(name);
        }
    }

    /// Plain with `over` laid over it, ready.
    std::unique_ptr<EmitterCmpt> Make(const std::string& over = "") {
        EmitterCmpt source;
        source.DeserializeValue(Parsed(Plain), true);
        Set(source, over);
        auto emitter = std::make_unique<EmitterCmpt>(&entity);
        emitter->Conform(source);
        emitter->Init();
        return emitter;
    }
    static void Set(EmitterCmpt& emitter, const std::string& members) {
        emitter.DeserializeValue(Parsed(members), false);
    }
    /// The pool by index: + lives.
    static std::string Living(const EmitterCmpt& emitter) {
        std::string text;
        for (const Particle& particle : emitter.mParticles)
            text += particle.alive ? '+' : '-';
        return text;
    }
    /// How many each of some calls emits.
    static std::string Emitted(EmitterCmpt& emitter, const std::vector<float>& steps) {
        std::string text;
        for (const float dt : steps) {
            const std::string before = Living(emitter);
            emitter.Emit(dt);
            const std::string after = Living(emitter);
            text += std::to_string(std::count(after.begin(), after.end(), '+') -
                                   std::count(before.begin(), before.end(), '+'));
        }
        return text;
    }
    Vorn::Entity entity;
};

} // namespace RenderTests
