// What surrounds a block: the signals that its ports are connected to, the order in which the host offers them, and what
// people call its parameters.
#pragma once

#include "dims.h"

#include <optional>
#include <string>

namespace blockhost {

/// The signal that is connected to a port. What it leaves open, the block's defaults settle.
struct Signal {
    std::optional<Dims> dims;    ///< upper bound of a variable-size signal
    std::optional<int> typeId;
    std::optional<int> mode;     ///< a DimensionsMode
    int frameData = 0;           ///< 1 frame-based, 0 sample-based
    const void* data = nullptr;  ///< inputs only: elements that the block reads in place; null: a buffer of the host
};

enum class Direction { In, Out };
enum class Attribute { Size, DataType, Mode, Frame };

/// One attribute of one port, as propagation visits them.
struct Offer {
    Direction direction;
    int port;
    Attribute attribute;
};

/// What people call a dialog parameter, when they may change it while the block runs ("no" or a condition), what it means
/// in one sentence, and the values that it may take; all but the name may be empty.
struct ParamLabel {
    std::string name;
    std::string tunable;
    std::string meaning;
    std::string values = {};
};

}  // namespace blockhost
