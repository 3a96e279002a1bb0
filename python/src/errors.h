// Exceptions of the module: a class of esttform._errors for each kind of failure.
#pragma once

#include <pybind11/pybind11.h>

#include <stdexcept>

namespace esttform::python {

/// The block refused a step.
class StepRefused : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// An operation on a closed estimator.
class Closed : public std::runtime_error {
public:
    Closed() : std::runtime_error("the estimator is closed; open another one") {}
};

/// Makes Python exceptions of StepRefused, Closed, Error and app::Failure.
void addErrors();

}  // namespace esttform::python
