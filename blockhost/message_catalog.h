// The texts of the host's messages, by identifier, with their arguments filled in. Written for the user of a block:
// what is wrong, what is expected, what to do.
#pragma once

#include "host_api.h"

#include <string>

namespace blockhost {

/// Finished text of a message. An unknown identifier gives itself and its arguments.
std::string messageText(const resource_core::BaseMsgID& message);

/// What a parameter-name fragment calls the value, for example "a percentage"; null for an unknown one.
const char* quantityText(const resource_core::BaseMsgID& fragment) noexcept;

}  // namespace blockhost
