// SPDX-License-Identifier: MIT
#pragma once

#include <json/value.h>

namespace View {

/// The keys of docs/emitter.md, to be dragged, in the panel. Whether one was changed.
bool EditEmitter(Json::Value& emitter);

} // namespace View
