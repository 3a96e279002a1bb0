// Unit: what the functions of one C file have in common while they are written: the names at file level, and what the head
// of the file has to provide for them.
#pragma once

#include "../ir/tree.h"
#include "names.h"
#include "text.h"

#include <map>
#include <set>
#include <string>
#include <utility>

namespace blockhost::c99 {

struct Unit {
    Unit();

    NameScope names;
    std::map<const CG::Var*, std::string> varNames;
    std::map<const CG::Var*, std::string> sizeNames;  ///< arrays of current sizes, by the port's variable
    std::map<const CG::Fcn*, std::string> fcnNames;

    // ---- Used so far
    bool needsMath = false;
    bool needsComplexD = false;
    bool needsComplexR = false;
    std::set<std::pair<int, bool>> conversions;       ///< to integer: its data-type id, and whether from single
    std::set<std::string> platformFcns;               ///< of "clock", "rand", "srand"

    /// The C type of a scalar; the file will define it if C does not.
    std::string typeName(const CG::Type* type);
    /// The helper that converts a double or a single to an integer type.
    std::string conversion(const CG::Type* from, const CG::Type* to);
    /// The macro of a function that a device may have to replace: ESTTFORM_RAND of "rand".
    std::string platformMacro(const std::string& name);
};

/// True for "clock", "rand" and "srand".
bool isPlatformFcn(const std::string& name);

/// Includes, macros, types and helpers that a unit's functions use, and only those.
///
/// @param headers       as the tree registered them
/// @param hasOwnTypes   the complex types are defined here, not in the model's header
Lines unitHead(const Unit& unit, const std::vector<std::string>& headers, bool hasOwnTypes);
/// Definitions of the complex types that a unit uses.
Lines complexTypes(const Unit& unit);

}  // namespace blockhost::c99
