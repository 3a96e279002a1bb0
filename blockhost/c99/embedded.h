// The files that come with generated code, as texts within the library: the runtime, and templates of the files around a model.
#pragma once

#include <string_view>

namespace blockhost::c99 {

/// Text of a file of rt/ or of templates/, by its name without folder; null for any other name. Generated while building.
const char* embeddedFile(std::string_view name) noexcept;

}  // namespace blockhost::c99
