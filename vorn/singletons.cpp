// SPDX-License-Identifier: MIT
//
// The singletons of the library, in the order in which they come up; they go in the reverse order.
// They stand in one source because only within a source the order of definition is that of
// construction.
#include "vorn/core/delta_clock.hpp"
#include "vorn/input/input_manager.hpp"
#include "vorn/physics/pair_walk.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene_manager.hpp"
#include "vorn/shell/engine.hpp"
#include "vorn/sound/sound_manager.hpp"
#include "vorn/trigger/trigger_manager.hpp"

namespace Vorn {

template <>
DeltaClock Singleton<DeltaClock>::mSingleton{};
template <>
Engine Singleton<Engine>::mSingleton{};
template <>
InputManager Singleton<InputManager>::mSingleton{};
template <>
EntityFactory Singleton<EntityFactory>::mSingleton{};
template <>
SceneManager Singleton<SceneManager>::mSingleton{};
template <>
TriggerManager Singleton<TriggerManager>::mSingleton{};
template <>
SoundManager Singleton<SoundManager>::mSingleton{};
template <>
GraphicsSystem Singleton<GraphicsSystem>::mSingleton{};
template <>
PhysicsSystem Singleton<PhysicsSystem>::mSingleton{};
template <>
EmitterSystem Singleton<EmitterSystem>::mSingleton{};

// Bound to the tables of the system above.
const CategoryTable* const PhysicsCmpt::mCatMap = PhysicsSystem::Instance()->CategoryMap();
const VolumeTable* const PhysicsCmpt::mVolMap = PhysicsSystem::Instance()->VolumeMap();

} // namespace Vorn
