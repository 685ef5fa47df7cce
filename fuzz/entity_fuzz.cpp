// SPDX-License-Identifier: MIT
//
// Any bytes as an entity file and as a variant file of a pool that holds something already: they
// are loaded or raise a standard exception. What is loaded is handed out, and its differences from
// itself are none.
#include "fuzz/fuzz.hpp"
#include "tests/support/physics_names.hpp"
#include "worlds/meadow/meadow.hpp"

#include <exception>
#include <string>

namespace {

using Pool = Vorn::EntityPool<Worlds::Walker>;

// True if the text was taken.
template <typename Load>
bool Try(Load load) {
    try {
        load();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void CheckTemplate(Pool& pool, const std::string& variant) {
    Vorn::Entity* entity = pool.Fetch(variant);
    Fuzz::Require(entity, "a template that was loaded is not there");
    Json::Value differences;
    entity->SerializeValue(differences, false);
    Fuzz::Require(!differences.isMember("Position") && !differences.isMember("Name"),
                  "a fresh entity differs from its template");
    Json::Value whole;
    entity->SerializeValue(whole, true);
    // A body of every category is written with an empty text, which does not come back.
    Try([&] { entity->DeserializeValue(whole, false); });
    pool.Return(entity);
    Fuzz::Require(pool.Size() == pool.Idle(), "an entity stayed out of its pool");
}

} // namespace

FUZZ_TARGET(data, size) {
    Tests::EnterPhysicsNames();
    const std::string text(data, size);
    Pool pool;
    pool.LoadMaster(R"({"Type": "walker", "Name": "first", "PhysicsCmpt": {}})", 2);

    if (!Try([&] { pool.LoadMaster(text, 3); })) {
        Vorn::Entity* entity = pool.Fetch("master");
        Fuzz::Require(entity->Name() == "first", "a text that raised changed the master");
        pool.Return(entity);
    }
    CheckTemplate(pool, "master");

    Vorn::Entity* variant = nullptr;
    if (Try([&] { variant = pool.LoadVariant(text); }))
        CheckTemplate(pool, variant->Variant());
}
