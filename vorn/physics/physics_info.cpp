// SPDX-License-Identifier: MIT
//
// The physics info file: the names of categories and volumes.
#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/physics_system.hpp"

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace Vorn {

namespace {

constexpr std::size_t MaxCategories = 32; // the bits of an int

std::vector<std::string> ReadNames(const Json::Value& root, const std::string& key) {
    const Json::Value& list = JsonMember(root, key);
    if (!list.isNull() && !list.isArray())
        throw DataError("Type is not convertible to array: \"" + key + '"');
    std::vector<std::string> names;
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        if (!list[i].isString())
            throw DataError("Type is not convertible to string: \"" + key + "\"[" +
                            std::to_string(i) + ']');
        names.push_back(list[i].asString());
    }
    return names;
}

} // namespace

void PhysicsSystem::LoadPhysicsInfo(const std::string& path) {
    const std::string text = TextFromFile(path);
    ReadingIn([&path] { return path; },
              [&] {
                  const Json::Value root = ParseJson(text);
                  const std::vector<std::string> categories = ReadNames(root, "Category");
                  const std::vector<std::string> volumes = ReadNames(root, "Volume");
                  if (categories.size() > MaxCategories)
                      throw std::length_error("more than 32 names in \"Category\" in " + path);

                  const std::uint32_t all =
                      static_cast<std::uint32_t>((std::uint64_t{1} << categories.size()) - 1);
                  for (std::size_t i = 0; i < categories.size(); ++i) {
                      const std::uint32_t bits = categories[i] == "ALL" ? all : 1u << i;
                      AddCategory(categories[i], static_cast<int>(bits));
                  }
                  for (std::size_t i = 0; i < volumes.size(); ++i)
                      AddVolume(volumes[i], static_cast<unsigned int>(i));
              });
}

void PhysicsSystem::AddCategory(const std::string& name, int bits) {
    mCategories.try_emplace(name, static_cast<std::uint32_t>(bits));
}

void PhysicsSystem::AddVolume(const std::string& name, unsigned int type) {
    mVolumes.try_emplace(name, type);
}

} // namespace Vorn
