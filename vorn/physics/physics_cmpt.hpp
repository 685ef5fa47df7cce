// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/scene/base_cmpt.hpp"
#include "vorn/scene/cmpt_list.hpp"

#include <json/value.h>

namespace Vorn {

/// Gives an entity a body.
/// So far it is created, registered and freed with its entity, and has no data of its own: it reads
/// and writes nothing.
class VORN_API PhysicsCmpt : public BaseCmpt {
public:
    using BaseCmpt::BaseCmpt;
    ~PhysicsCmpt() override;

    void DeserializeValue(const Json::Value& value, bool master) override;
    void SerializeValue(Json::Value& out, bool master) const override;
    void Init() override;
    void Deinit() override;
    void Conform(const BaseCmpt& source) override;

private:
    friend class CmptList<PhysicsCmpt>;
    friend class Registration<PhysicsCmpt>;
    Registration<PhysicsCmpt> mRegistration;
};

} // namespace Vorn
