// SPDX-License-Identifier: MIT
//
// A small world for tests of scenes: entities, pools and scenes that record what is done to them,
// in one log, and that do what a test asks for at any entry of it.
#pragma once

#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/entity_pool_base.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <gtest/gtest.h>
#include <json/reader.h>
#include <json/value.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace SceneTests {

using Log = std::vector<std::string>;

class Recorder {
public:
    /// Runs `hook` at the next entry `event`, right after it was written.
    void Once(const std::string& event, std::function<void()> hook) {
        mHooks[event] = std::move(hook);
    }
    void Note(const std::string& event) {
        mLog.push_back(event);
        const auto found = mHooks.find(event);
        if (found == mHooks.end())
            return;
        const auto hook = std::move(found->second);
        mHooks.erase(found);
        hook();
    }
    Log Take() { return std::exchange(mLog, {}); }

private:
    Log mLog;
    std::map<std::string, std::function<void()>> mHooks;
};

inline Recorder recorder;

class Probe : public Vorn::Entity {
public:
    void Init() override {
        recorder.Note("Init " + Name());
        Entity::Init();
    }
    void Update(float dt) override {
        mLastDt = dt;
        recorder.Note("Update " + Name());
        Entity::Update(dt);
    }
    void Deinit() override {
        recorder.Note("Deinit " + Name());
        Entity::Deinit();
    }
    float LastDt() const { return mLastDt; }

private:
    float mLastDt = -1.0f;
};

inline Json::Value Element(const std::string& type, const std::string& name) {
    Json::Value element(Json::objectValue);
    element["Type"] = type;
    element["Name"] = name;
    return element;
}

inline void Rename(Vorn::Entity& entity, const std::string& name) {
    Json::Value value(Json::objectValue);
    value["Name"] = name;
    entity.DeserializeValue(value, false);
}

/// Hands out a new entity each time and keeps them all, so that none is ever handed out as another.
class LoggingPool : public Vorn::EntityPoolBase {
public:
    explicit LoggingPool(std::string type) : mType(std::move(type)) {}

    void LoadMaster(const std::string& text, unsigned int poolSize) override {
        texts.push_back(text);
        recorder.Note(mType + ".LoadMaster " + std::to_string(poolSize));
    }
    Vorn::Entity* Fetch(const std::string& variant) override {
        recorder.Note(mType + ".Fetch " + variant);
        if (handsOutNull)
            return nullptr;
        Json::Value values(Json::objectValue);
        values["Type"] = mType;
        values["Variant"] = variant;
        return make(values);
    }
    void Return(Vorn::Entity* entity) override {
        returned.push_back(entity);
        recorder.Note(mType + ".Return " + entity->Name());
    }
    Vorn::Entity* LoadVariant(const std::string& text) override {
        texts.push_back(text);
        Json::Value values;
        std::istringstream(text) >> values;
        const std::string variant = values["Variant"].asString();
        recorder.Note(mType + ".LoadVariant " + variant);
        return handsOutNull ? nullptr : make(values);
    }

    std::vector<std::string> texts;
    std::vector<Vorn::Entity*> returned;
    std::vector<Vorn::Entity*> fetched;
    bool handsOutNull = false;

private:
    Vorn::Entity* make(const Json::Value& values) {
        mEntities.push_back(std::make_unique<Probe>());
        mEntities.back()->DeserializeValue(values, true);
        fetched.push_back(mEntities.back().get());
        return fetched.back();
    }

    std::string mType;
    std::vector<std::unique_ptr<Probe>> mEntities;
};

/// Records each virtual operation that changes something, then does what a scene does.
class LoggingScene : public Vorn::Scene {
public:
    explicit LoggingScene(std::string label) : mLabel(std::move(label)) {}

    void Deserialize(const std::string& text) override {
        note("Deserialize");
        Scene::Deserialize(text);
    }
    void DeserializePath(const std::string& path) override {
        note("DeserializePath " + path);
        Scene::DeserializePath(path);
    }
    void Redeserialize() override {
        note("Redeserialize");
        Scene::Redeserialize();
    }
    std::string Serialize() const override {
        note("Serialize");
        return Scene::Serialize();
    }
    void SerializePath(const std::string& path) const override {
        note("SerializePath " + path);
        Scene::SerializePath(path);
    }
    void DeserializeValue(const Json::Value& root) override {
        note("DeserializeValue");
        Scene::DeserializeValue(root);
    }
    void SerializeValue(Json::Value& root) const override {
        note("SerializeValue");
        Scene::SerializeValue(root);
    }
    void Load() override {
        note("Load");
        Scene::Load();
    }
    void Init() override {
        note("Init");
        Scene::Init();
    }
    void Update(float dt) override {
        std::ostringstream text;
        text << "Update " << dt;
        note(text.str());
        Scene::Update(dt);
    }
    void Deinit() override {
        note("Deinit");
        Scene::Deinit();
    }
    void Unload() override {
        note("Unload");
        Scene::Unload();
    }
    void DestroyEntity(Vorn::Entity* entity, bool immediate) override {
        note("DestroyEntity " + entity->Name() + when(immediate));
        Scene::DestroyEntity(entity, immediate);
    }
    void AddEntity(Vorn::Entity* entity, bool immediate) override {
        note("AddEntity " + entity->Name() + when(immediate));
        Scene::AddEntity(entity, immediate);
    }
    void RemoveEntity(Vorn::Entity* entity, bool immediate) override {
        note("RemoveEntity " + entity->Name() + when(immediate));
        Scene::RemoveEntity(entity, immediate);
    }

protected:
    void initEntity(Vorn::Entity* entity) override {
        note("initEntity " + entity->Name());
        Scene::initEntity(entity);
    }
    void deinitEntity(Vorn::Entity* entity) override {
        note("deinitEntity " + entity->Name());
        Scene::deinitEntity(entity);
    }

private:
    static std::string when(bool immediate) { return immediate ? " now" : " later"; }
    void note(const std::string& event) const { recorder.Note(mLabel + "." + event); }

    std::string mLabel;
};

class TempDir {
public:
    TempDir() {
        std::string path = (std::filesystem::temp_directory_path() / "vorn-XXXXXX").string();
        if (!mkdtemp(path.data()))
            throw std::runtime_error("no temporary directory");
        mPath = path;
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    std::string Path() const { return mPath.string(); }
    std::string Path(const std::string& name) const { return (mPath / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const {
        // Some file systems wait for the disk when a file is cut and written anew.
        std::filesystem::remove(mPath / name);
        std::ofstream(mPath / name, std::ios::binary) << text;
        return Path(name);
    }

private:
    std::filesystem::path mPath;
};

inline std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The text of the exception of type E that `act` raises; a failure if it raises none.
template <typename E, typename Act>
std::string Raised(Act&& act) {
    try {
        act();
    } catch (const E& error) {
        return error.what();
    }
    ADD_FAILURE() << "nothing was raised";
    return {};
}

inline Log Names(const Vorn::Scene& scene) {
    Log names;
    for (const Vorn::Entity* entity : scene.EntityList())
        names.push_back(entity->Name());
    return names;
}

inline Log Keys() {
    Log keys;
    Vorn::EntityFactory::Instance()->GetEntityList(keys);
    std::sort(keys.begin(), keys.end());
    return keys;
}

/// Starts with the pool `things` under "thing", and leaves factory, manager and log empty.
class SceneTest : public ::testing::Test {
protected:
    SceneTest() {
        reset();
        factory.Register("thing", &things);
    }
    ~SceneTest() override { reset(); }

    /// Owned by the fixture; of the type "thing".
    Probe* Make(const std::string& name) {
        mMade.push_back(std::make_unique<Probe>());
        mMade.back()->DeserializeValue(Element("thing", name), true);
        return mMade.back().get();
    }
    /// One entity of "thing" per name.
    static void Describe(Vorn::Scene& scene, std::initializer_list<const char*> names) {
        Json::Value root(Json::objectValue);
        root["Entities"] = Json::Value(Json::arrayValue);
        for (const char* name : names)
            root["Entities"].append(Element("thing", name));
        scene.DeserializeValue(root);
        recorder.Take();
    }
    /// The scene runs with one new entity per name.
    void Fill(Vorn::Scene& scene, std::initializer_list<const char*> names) {
        for (const char* name : names)
            scene.AddEntity(Make(name), true);
        recorder.Take();
    }
    static void Once(const std::string& event, std::function<void()> hook) {
        recorder.Once(event, std::move(hook));
    }
    static Log Take() { return recorder.Take(); }

    Vorn::EntityFactory& factory = *Vorn::EntityFactory::Instance();
    Vorn::SceneManager& manager = *Vorn::SceneManager::Instance();
    LoggingPool things{"thing"};

private:
    void reset() {
        recorder = Recorder();
        factory = Vorn::EntityFactory();
        manager = Vorn::SceneManager();
    }

    std::vector<std::unique_ptr<Probe>> mMade;
};

} // namespace SceneTests
