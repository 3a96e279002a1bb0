// The command 'esttform params': lists the block's eighteen dialog parameters.
#pragma once

#include <string>

namespace esttform::app {

/// The list: index, name, admitted values, unit, default, tunable, meaning; two lines each.
std::string paramsText();

}  // namespace esttform::app
