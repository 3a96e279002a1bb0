// Model: the code of one or more blocks that described themselves, with what a writer has to know about their signals.
#pragma once

#include "../dims.h"
#include "tree.h"

#include <string>
#include <vector>

namespace blockhost::ir {

/// A port of a block.
struct PortInfo {
    CG::Var* var = nullptr;   ///< array of the port's width
    Dims dims;                ///< of a variable-size port: its bound
    bool isVariable = false;
};

/// A run-time parameter of a block.
struct ParamInfo {
    CG::Var* var = nullptr;   ///< scalar
    double value = 0.0;       ///< the value that the settings give
    std::string meaning;      ///< one sentence and the values that it may take
};

/// What one block described.
struct BlockCode {
    explicit BlockCode(CG::Module& module) : start(module, "start code"), output(module, "output code"),
                                             sizeRules(module, "size rules") {}

    std::vector<PortInfo> inputs;
    std::vector<PortInfo> outputs;
    std::vector<ParamInfo> params;        ///< by run-time index
    std::vector<CG::Var*> workVectors;    ///< by index
    std::vector<std::string> settings;    ///< for the head of the file, one line each
    CG::Cfg start;
    CG::Cfg output;
    CG::Cfg sizeRules;                    ///< SetOutputDim statements, to be run before the output code
};

struct Model {
    CG::Module module;
    std::vector<std::unique_ptr<BlockCode>> blocks;
};

/// What a violation of the tree's rules looks like: "output code: statement 12 (szelesttform_cg_step.cpp:57): ...".
struct Violation {
    std::string text;
};

/// Every violation of the rules of the tree, in the order of the text; empty for a tree that can be written.
///
/// Checked: mistakes recorded while a body was described; blocks closed; names that are identifiers; every variable declared
/// before use and used inside its block and its function, and a local that is read written somewhere; both sides of an
/// assignment of one type, and the target not read-only; operands of one type that the operator takes, divisors and shifts that
/// are known in their range; indices that are known inside their array; conditions Boolean; counters integer variables;
/// arguments set, as many as the function has inputs and of their types; a call with side effects nowhere twice; sizes
/// used in a step only; headers and functions that exist.
ESTTFORM_API std::vector<Violation> verify(const Model& model);

/// The tree as text for people, one statement a line with the generator's line, the same for the same tree.
ESTTFORM_API std::string dump(const Model& model);

/// A function in the same way, but without the lines of its generator.
std::string dump(const CG::Fcn& fcn);

}  // namespace blockhost::ir
