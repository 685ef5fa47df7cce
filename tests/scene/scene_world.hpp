// SPDX-License-Identifier: MIT
//
// A small world for tests of scenes: entities, pools and scenes that write what is done to them
// into one log, and that do what a test asks for at any entry of it.
#pragma once

#include "tests/support/physics_names.hpp"
#include "vorn/vorn.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/json.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace SceneTests {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

class Recorder {
public:
    /// Runs `hook` at the next entry `event`, right after it was written.
    void Once(const std::string& event, std::function<void()> hook) {
        mHooks[event] = std::move(hook);
    }
    void Note(const std::string& event) {
        mLog += (mLog.empty() ? "" : " ") + event;
        if (const auto hook = mHooks.extract(event))
            hook.mapped()();
    }
    /// The log since the last time; hooks that were not reached are gone.
    std::string Take() {
        mHooks.clear();
        return std::exchange(mLog, {});
    }

private:
    std::string mLog;
    std::map<std::string, std::function<void()>> mHooks;
};

inline Recorder recorder;

class Probe : public Vorn::Entity {
public:
    std::string label;                   // stands in the log, in place of the name
    const Vorn::Scene* holder = nullptr; // as a twin of a scene says

    std::string Label() const { return label.empty() ? Name() : label; }
    void Init() override { recorder.Note("Init:" + Label()); }
    void Update(float) override { recorder.Note("Update:" + Label()); }
    void Deinit() override { recorder.Note("Deinit:" + Label()); }
};

/// Hands out a new entity each time and keeps them all, so that none is ever handed out as another.
class LoggingPool : public Vorn::EntityPoolBase {
public:
    explicit LoggingPool(std::string type) : mType(std::move(type)) {}

    void LoadMaster(const std::string& text, unsigned int poolSize) override {
        texts.push_back(text);
        recorder.Note(mType + ".LoadMaster:" + std::to_string(poolSize));
    }
    Vorn::Entity* Fetch(const std::string& variant) override {
        recorder.Note(mType + ".Fetch:" + variant);
        return empty ? nullptr : Make("", variant);
    }
    void Return(Vorn::Entity* entity) override {
        recorder.Note(mType + ".Return:" + dynamic_cast<Probe*>(entity)->Label());
    }
    Vorn::Entity* LoadVariant(const std::string& text) override {
        texts.push_back(text);
        return Fetch(Vorn::ParseJson(text)["Variant"].asString());
    }
    Probe* Make(const std::string& name, const std::string& variant = "master") {
        made.push_back(std::make_unique<Probe>());
        made.back()->Deserialize(R"({"Type": ")" + mType + R"(", "Variant": ")" + variant +
                                     R"(", "Name": ")" + name + "\"}",
                                 true);
        return made.back().get();
    }

    bool empty = false;
    std::vector<std::string> texts;
    std::vector<std::unique_ptr<Probe>> made;

private:
    std::string mType;
};

struct Fault : std::runtime_error {
    Fault() : std::runtime_error("fault") {}
};

inline std::vector<std::string> Names(const Vorn::Scene& scene) {
    std::vector<std::string> names;
    for (const Vorn::Entity* entity : scene.EntityList())
        names.push_back(entity->Name());
    return names;
}

/// Starts with the pool `things` under "thing", and leaves factory, manager and log empty.
class SceneTest : public testing::Test {
protected:
    SceneTest() {
        std::filesystem::create_directory(folder);
        Tests::EnterPhysicsNames();
        factory.Register("thing", &things);
    }
    ~SceneTest() override {
        std::filesystem::remove_all(folder);
        recorder = Recorder();
        factory = Vorn::EntityFactory();
        manager = Vorn::SceneManager();
    }

    static void FaultAt(const std::string& event) {
        recorder.Once(event, [] { throw Fault(); });
    }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
        return folder / name;
    }
    std::vector<std::string> Keys() const {
        std::vector<std::string> keys;
        factory.GetEntityList(keys);
        return keys;
    }

    const std::filesystem::path folder = testing::TempDir() + "vorn-" + std::to_string(getpid());
    Vorn::EntityFactory& factory = *Vorn::EntityFactory::Instance();
    Vorn::SceneManager& manager = *Vorn::SceneManager::Instance();
    LoggingPool things{"thing"};
};

} // namespace SceneTests
