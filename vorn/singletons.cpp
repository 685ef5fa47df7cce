// SPDX-License-Identifier: MIT
//
// The singletons of the library, in the order in which they come up; they go in the reverse order.
// They stand in one source because only within a source the order of definition is that of
// construction.
//
// A pack that goes unloads from the stores, so the packs come up last of these. A texture that goes
// releases what it has on the device, so the stores come up behind the device; and sounds are those
// of the sound system.
#include "vorn/core/delta_clock.hpp"
#include "vorn/input/input_manager.hpp"
#include "vorn/physics/pair_walk.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/profiler/profiler.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/graphics_2d_system.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"
#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/rsc_pack_manager.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene_manager.hpp"
#include "vorn/shell/engine.hpp"
#include "vorn/sound/sound_loader.hpp"
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
Graphic Singleton<Graphic>::mSingleton{};
template <>
SoundLoader Singleton<SoundLoader>::mSingleton{};
template <>
TextureManager Singleton<TextureManager>::mSingleton{};
template <>
MaterialManager Singleton<MaterialManager>::mSingleton{};
template <>
MeshManager Singleton<MeshManager>::mSingleton{};
template <>
RscPackManager Singleton<RscPackManager>::mSingleton{};
template <>
GraphicsSystem Singleton<GraphicsSystem>::mSingleton{};
template <>
PhysicsSystem Singleton<PhysicsSystem>::mSingleton{};
template <>
EmitterSystem Singleton<EmitterSystem>::mSingleton{};
template <>
Graphics2DSystem Singleton<Graphics2DSystem>::mSingleton{};
template <>
Profiler Singleton<Profiler>::mSingleton{};

// Bound to the tables of the system above.
const CategoryTable* const PhysicsCmpt::mCatMap = PhysicsSystem::Instance()->CategoryMap();
const VolumeTable* const PhysicsCmpt::mVolMap = PhysicsSystem::Instance()->VolumeMap();

} // namespace Vorn
