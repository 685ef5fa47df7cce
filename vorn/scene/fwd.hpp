// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class BaseCmpt;
class Entity;
class EntityFactory;
class EntityPoolBase;
class MasterFlags;
class Scene;
class SceneManager;
template <typename T>
class EntityPool;
template <typename S, typename C>
class System;

} // namespace Vorn
