// Settings from keyword arguments, as the program takes them from its options.
#pragma once

#include "options/block_settings.h"
#include "point_array.h"

#include <pybind11/pybind11.h>

namespace esttform::python {

/// Resolves keyword arguments; None stands for one that was not given.
///
/// @param keywords   type, robust, method, threshold, threshold_px, refine, samples, max_samples, confidence, stop_at_inliers,
///                   sampling, tform_type, params, seed, block
/// @param pointsType, layout  of the points that the block is to read
/// @throws TypeError   an unknown keyword, a value of a wrong type
/// @throws app::Failure  a value out of range, a contradiction
app::BlockSetup settingsOf(const pybind11::dict& keywords, DataType pointsType, Layout layout);

/// A whole number that fits 32 bits without a sign, from an int or what NumPy has for one.
///
/// @throws TypeError, ValueError
std::uint32_t wholeNumber(const pybind11::handle& value, const std::string& name);

/// @throws TypeError
double realNumber(const pybind11::handle& value, const std::string& name);

/// True or False, and nothing that only counts as one of them.
///
/// @throws TypeError
bool truth(const pybind11::handle& value, const std::string& name);

/// How an option is spelled in Python: threshold_px for threshold-px, robust=False for no-robust.
std::string keywordSpelling(std::string_view name);

}  // namespace esttform::python
