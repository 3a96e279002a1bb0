// Finding: how a check ends when the block does something that a strict host does not accept.
#pragma once

#include <stdexcept>
#include <string>

namespace esttform::check {

/// Ends a check. what() is one line: what was done, what was found, what was expected.
class Finding : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace esttform::check
