// SPDX-License-Identifier: MIT
#include "dev/trigger_reload.hpp"

#include "dev/json_file.hpp"
#include "vorn/trigger/trigger_manager.hpp"

#include <memory>
#include <stdexcept>
#include <utility>

namespace Vorn::Dev {

bool ReloadTrigger(const std::string& name) {
    bool any = false;
    TriggerManager::Instance()->ForEach([&](Trigger::Trigger& trigger) {
        if (trigger.mScript != name)
            return;
        ReadWhole("data/trigger/" + name);
        const std::unique_ptr<Trigger::Trigger> fresh(Trigger::Trigger::LoadScript(name));
        if (!fresh->mEvent.mData)
            throw std::runtime_error("\"Event\" has no event that a script can wait for");
        trigger.mEvent = std::move(fresh->mEvent);
        trigger.mAction = std::move(fresh->mAction);
        trigger.mTimer = trigger.mInterval = 0.0;
        any = true;
    });
    return any;
}

} // namespace Vorn::Dev
