// Names in generated C: which are taken, and a free one for every variable and function.
#pragma once

#include "../estimator.h"

#include <set>
#include <string>

namespace blockhost::c99 {

/// True for keywords of C99 and C++17, names of the standard library that generated files can meet, and names of the
/// runtime.
ESTTFORM_API bool isReservedName(const std::string& name);

/// The names of one C scope. A name is given once in it and in the scopes around it, so that nothing is shadowed.
class ESTTFORM_API NameScope {
public:
    explicit NameScope(const NameScope* enclosing = nullptr) : mEnclosing(enclosing) {}

    /// The base if it is free, else base_1, base_2, ...; taken from now on.
    std::string add(const std::string& base);
    /// Takes a name that must be as it is.
    void take(const std::string& name) { mNames.insert(name); }

private:
    bool isTaken(const std::string& name) const;

    const NameScope* mEnclosing;
    std::set<std::string> mNames;
};

}  // namespace blockhost::c99
