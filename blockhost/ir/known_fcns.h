// Functions that generated code calls but does not define, and what is known of every call.
#pragma once

#include "tree.h"

#include <string>
#include <vector>

namespace blockhost::ir {

/// A function of the C library or of the runtime.
struct KnownFcn {
    std::string name;
    std::string header;                   ///< as a tree registers it; empty: the writer includes what it needs
    std::vector<const CG::Type*> inputs;  ///< arrays are pointers
    const CG::Type* output;               ///< null without a result, or when the call says the type
};

/// The external function of a name, null when there is none.
const KnownFcn* findExternal(const std::string& name) noexcept;

/// Headers that a tree may register: "<stdlib.h>", "zelsvd_rt.h".
bool isKnownHeader(const std::string& header) noexcept;

/// Types of what a call takes: the inputs of its function, of an intrinsic or a function of the target the call's own type.
std::vector<const CG::Type*> inputTypesOf(const CG::Node& call);

/// Whether the function takes argument idx as a pointer.
bool isPointerArgument(const CG::Node& call, std::size_t idx);

/// True for calls that may change something or give another value the next time.
bool isCallWithSideEffects(const CG::Node& call) noexcept;

}  // namespace blockhost::ir
