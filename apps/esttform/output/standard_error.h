// What the program says beside its results: standard error, which may be full, closed or without a reader. A message that
// cannot be written is lost; it changes neither results nor exit code.
#pragma once

#include <string_view>

namespace esttform::app {

void writeToStandardError(std::string_view text) noexcept;

}  // namespace esttform::app
