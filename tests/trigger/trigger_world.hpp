// SPDX-License-Identifier: MIT
//
// A small world for tests of triggers: a running scene, a pool that writes down what CREATE_ENTITY
// makes of it, and scripts that are written where the engine looks for them.
#pragma once

#include "tests/support/working_folder.hpp"
#include "vorn/vorn.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <locale>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace TriggerTests {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace Vorn::Trigger::EventType;

using Texts = std::vector<std::string>;

/// Runs a hook when it is initialised outside a scene, which only CREATE_ENTITY does.
class Spawn : public Vorn::Entity {
public:
    std::function<void(Spawn&)> born;
    int inits = 0;

    void Init() override {
        ++inits;
        if (!Scene())
            born(*this);
    }
};

class SpawnPool : public Vorn::EntityPoolBase {
public:
    explicit SpawnPool(std::string type) : mType(std::move(type)) {}

    void LoadMaster(const std::string&, unsigned int) override {}
    Vorn::Entity* LoadVariant(const std::string&) override { return nullptr; }
    void Return(Vorn::Entity*) override {}
    Vorn::Entity* Fetch(const std::string& variant) override {
        ++fetched;
        Spawn& spawn = made.emplace_back();
        spawn.Parent(parent);
        spawn.born = [this, variant](Spawn& entity) {
            const Vorn::Vector3 at = entity.Position();
            std::ostringstream text;
            text.imbue(std::locale::classic());
            text << mType << ' ' << variant << ' ' << at.x << ' ' << at.y << ' ' << at.z;
            created.push_back(text.str());
            if (const auto hook = std::exchange(onBirth, nullptr))
                hook();
        };
        return &spawn;
    }

    inline static Texts created; // of all pools: "type variant x y z"
    std::deque<Spawn> made;
    Vorn::Entity* parent = nullptr;
    std::function<void()> onBirth; // at the next one
    int fetched = 0;

private:
    std::string mType;
};

/// A JSON array of texts that need no escapes.
inline std::string Array(const Texts& texts) {
    std::string array;
    for (const std::string& text : texts)
        array += (array.empty() ? "\"" : ", \"") + text + '"';
    return '[' + array + ']';
}

/// Has the pools "thing" and "other" and a running scene with nothing in it.
class TriggerTest : public testing::Test {
protected:
    TriggerTest() {
        folder.Folder("data/trigger");
        factory.Register("thing", &things);
        factory.Register("other", &others);
        scenes.SetScene(&scene);
        scenes.Update(0.0f);
        SpawnPool::created.clear();
    }
    ~TriggerTest() override {
        factory = Vorn::EntityFactory();
        scenes = Vorn::SceneManager();
    }

    Vorn::Trigger::Trigger* Load(const std::string& text) const {
        folder.File("data/trigger/script.json", text);
        return Vorn::Trigger::Trigger::LoadScript("script.json");
    }
    Vorn::Trigger::Trigger* Load(const std::string& event, const Texts& action) const {
        return Load("{\"Event\": " + Array({event}) + ", \"Action\": " + Array(action) + "}");
    }
    template <typename T, typename V>
    static void Raise(Vorn::TriggerManager& of, V value) {
        T event(value);
        of.Raise(event);
    }
    /// What an update creates.
    Texts Frame(Vorn::TriggerManager& of, double dt) const {
        SpawnPool::created.clear();
        of.Update(dt);
        return std::exchange(SpawnPool::created, {});
    }
    /// What updates create, those of a frame joined by "+", the frames by "|".
    std::string Frames(Vorn::TriggerManager& of, const std::vector<double>& dts) const {
        std::string text;
        for (const double dt : dts) {
            std::string created;
            for (const std::string& one : Frame(of, dt))
                created += (created.empty() ? "" : "+") + one;
            text += created + '|';
        }
        text.pop_back();
        return text;
    }
    std::string Frames(const std::vector<double>& dts) { return Frames(manager, dts); }

    const Tests::WorkingFolder folder;
    Vorn::EntityFactory& factory = *Vorn::EntityFactory::Instance();
    Vorn::SceneManager& scenes = *Vorn::SceneManager::Instance();
    SpawnPool things{"thing"}, others{"other"};
    Vorn::Scene scene;
    Vorn::TriggerManager manager; // of the test alone; only the library's own hears the keyboard
};

} // namespace TriggerTests
