// SPDX-License-Identifier: MIT
//
// Any bytes as a physics info file and as the object of a body: they are read or raise a standard
// exception, and the body then stands in a step beside another one.
#include "fuzz/fuzz.hpp"
#include "tests/support/physics_names.hpp"
#include "tests/support/temp_folder.hpp"
#include "vorn/vorn.hpp"

#include <exception>
#include <string>

namespace {

void RunBodies(const std::string& text) {
    Vorn::PhysicsSystem system;
    Vorn::Entity bodies[2];
    for (Vorn::Entity& body : bodies) {
        body.Deserialize(R"({"PhysicsCmpt": {"Mask": "", "Type": "Sphere"}})", true);
        body.Alive(true);
        system.Register(body.Physics());
    }
    try {
        bodies[0].Physics()->DeserializeValue(Vorn::ParseJson(text), false);
        bodies[0].DeserializeValue(Vorn::ParseJson(text), false);
    } catch (const std::exception&) {
        // What was read before stays, and runs.
    }
    bodies[0].Physics()->Force(Vorn::Vector3(1, 2, 3));
    system.Update(1.0f);
    Vorn::Entity* hit = nullptr;
    Vorn::RayCastFromPoint(Vorn::Ray(Vorn::Vector3(), Vorn::Vector3(0, 0, 1)),
                           {&bodies[0], &bodies[1]}, hit, 0.0f, true);
    Json::Value written;
    bodies[0].SerializeValue(written, true);
    for (Vorn::Entity& body : bodies)
        system.Unregister(body.Physics());
}

} // namespace

FUZZ_TARGET(data, size) {
    static const Tests::TempFolder folder;
    Tests::EnterPhysicsNames();
    const std::string text(data, size);
    Vorn::PhysicsSystem system;
    try {
        system.LoadPhysicsInfo(folder.File("physics.json", text));
    } catch (const std::exception&) {
        Fuzz::Require(system.CategoryMap()->empty() && system.VolumeMap()->empty(),
                      "a file that raised entered names");
    }
    RunBodies(text);
}
