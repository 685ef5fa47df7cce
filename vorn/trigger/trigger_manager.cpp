// SPDX-License-Identifier: MIT
#include "vorn/trigger/trigger_manager.hpp"

#include "vorn/math/vector3.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <algorithm>
#include <cassert>
#include <locale>
#include <utility>

namespace Vorn {

namespace {

// Takes the walk over the actions, unless a walk further out has it.
class Walk {
public:
    explicit Walk(bool& running) : mRunning(running), mOuter(running) { mRunning = true; }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() { mRunning = mOuter; }

    bool IsInside() const { return mOuter; }

private:
    bool& mRunning;
    const bool mOuter;
};

// A number that cannot be read, or that no T can hold, is 0, and what follows it in the line is not
// read. The stream itself would give the largest T for 1e999.
template <typename T>
T ReadNumber(std::istream& stream) {
    T number{};
    return stream >> number ? number : T{};
}

} // namespace

TriggerManager::TriggerManager() {
    // A host with a decimal comma: scripts have a point.
    mStream.imbue(std::locale::classic());
}

TriggerManager::~TriggerManager() {
    while (!mTriggers.empty()) {
        delete mTriggers.back();
        mTriggers.pop_back();
    }
}

Trigger::Trigger* TriggerManager::Push(Trigger::Trigger* trigger) {
    assert(std::find(mTriggers.begin(), mTriggers.end(), trigger) == mTriggers.end() &&
           "a trigger is pushed once");
    if (trigger)
        mTriggers.push_back(trigger);
    return trigger;
}

void TriggerManager::Update(double dt) {
    mTimeElapsed += dt;
    Trigger::EventType::Time_Elapsed elapsed(mTimeElapsed);
    Raise(elapsed);
    Trigger::EventType::Time_Interval interval(dt);
    Raise(interval);

    const Walk walk(mRunning);
    if (walk.IsInside())
        return;
    // The commands may start further actions, which come behind these. To erase each action as it
    // ends, in the middle of the walk, would take time by the square of their number.
    const std::size_t count = mActive.size();
    for (std::size_t i = 0; i < count; ++i)
        ExecuteAction(mActive[i], dt);
    std::erase_if(mActive, [](const Action& action) { return action.mCommands.empty(); });
}

void TriggerManager::ExecuteAction(Action& action, double dt) {
    if (action.mCommands.empty())
        return;
    action.mWait -= dt;
    if (action.mWait >= 0.0)
        return;
    action.mWait = -1.0;

    mStream.clear();
    mStream.str(std::move(action.mCommands.front()));
    action.mCommands.pop_front();
    // What an empty line leaves in place must not be the command before it.
    mWord.clear();
    mStream >> mWord;
    if (mWord == "WAIT")
        wait(action);
    else if (mWord == "CREATE_ENTITY")
        createEntity();
}

void TriggerManager::wait(Action& action) {
    action.mWait = action.mWaitLength = ReadNumber<double>(mStream);
}

// The entity's Init is the game's code and may start and run further actions: the line is read
// whole before it, and the action, which moves when their array grows, is not touched after it.
void TriggerManager::createEntity() {
    std::string type;
    mStream >> mWord >> type >> mWord;
    if (!mStream || mWord != "POSITION")
        return;
    const float x = ReadNumber<float>(mStream);
    const float y = ReadNumber<float>(mStream);
    const float z = ReadNumber<float>(mStream);

    // An entity without a scene would never come back to its pool.
    Scene* const scene = SceneManager::Instance()->CurrentScene();
    if (!scene)
        return;
    Entity* const entity = EntityFactory::Instance()->FetchEntity(type, "master");
    entity->Position(x, y, z);
    scene->AddEntity(entity, false);

    // The scene will do this again; until then what it is drawn by is there already.
    entity->Init();
    if (entity->Graphics())
        entity->Graphics()->Init();
}

} // namespace Vorn
