// Matched points from a file, as the program reads them.
#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <vector>

namespace esttform::python {

/// The one frame of a CSV or TSV file as two N-by-2 arrays.
///
/// @throws app::Failure  as the program's: a file that cannot be read, a wrong row, more than one frame
pybind11::tuple readMatches(const std::string& path, const pybind11::object& dtype, const std::vector<std::string>& columns);

}  // namespace esttform::python
