// The tree of the intermediate representation: variables, nodes, statements, blocks, functions, and the module that owns
// them. Plain data: built through the host interface, then verified, dumped and written.
#pragma once

#include "../estimator.h"
#include "type.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace CG {

class Module;

/// A variable. Two variables of one name are two objects; who writes code keeps them apart.
class Var {
public:
    enum class Storage {
        Local,        ///< of a function, known in the block that lists it
        FcnInput,     ///< parameter of a library function
        InputPort,    ///< signals and memory of a block: known everywhere
        OutputPort,
        RunTimeParam,
        WorkVector,
    };

    std::string name;
    Storage storage = Storage::Local;
    const Type* type = nullptr;  ///< of a scalar or of an array's elements; FcnInput: the type of the input
    int width = 0;               ///< 0: a scalar, or an input of a function; else the number of elements of an array
    std::string use;             ///< what it is for; may be empty
    std::size_t declaredAt = 0;  ///< Local: number of the statements of its block that stand before it
};

class Node {
public:
    enum class Kind {
        Const,      ///< value, of the node's type; single values are already rounded
        Variable,   ///< var; an array as a whole has a matrix type
        Index,      ///< in[0]: array or pointer to one, in[1]: integer
        Real,       ///< in[0]: complex
        Imag,
        Unary,      ///< op, in[0]
        Binary,     ///< op, in[0], in[1]
        Cast,       ///< in[0] to the node's type
        Assign,     ///< in[0] := in[1]; only as a statement
        Call,       ///< callee, in: arguments; the type is null without result
        InputDim,   ///< current size of input port `port` of the block along `dim`
        Invalid,    ///< made from a null node or of operands that do not fit; `name` says why
    };
    enum class Callee {
        Library,    ///< fcn, a function of the module
        External,   ///< a function that the generated code does not define
        Target,     ///< a function of the target's own library: "rand", "pow", "log", "ceil"
        Intrinsic,  ///< "sqrt", "abs"
    };

    Kind kind = Kind::Invalid;
    const Type* type = nullptr;
    Module* module = nullptr;
    std::string op;                ///< operator string of Unary and Binary
    std::vector<Node*> in;         ///< an argument that was never set is null
    double value = 0.0;
    Var* var = nullptr;
    Callee callee = Callee::External;
    Fcn* fcn = nullptr;
    std::string name;              ///< of the callee but a library function; why a node is invalid
    int port = 0;
    int dim = 0;
};

/// Where in a generator something was said. The text is kept: the library of the block may be gone before the tree.
struct Place {
    std::string file;
    int line = 0;

    Place() = default;
    Place(const SourceLoc& loc) : file(loc.file), line(loc.line) {}
};

class Block;

class Stmt {
public:
    enum class Kind {
        Assign,        ///< target := value
        Call,          ///< value, a call without result taken
        Comment,       ///< text
        Increment,     ///< target
        Decrement,
        For,           ///< target from 0 while below value, by 1
        CFor,          ///< target from value while condition, by step
        While,         ///< condition
        If,            ///< condition; elseBody may be null
        Scope,
        SizeCheck,     ///< ends the step when value and condition differ
        SetOutputDim,  ///< current size of output port `port` along `dim` := value
    };

    Kind kind = Kind::Comment;
    Node* target = nullptr;
    Node* value = nullptr;
    Node* condition = nullptr;
    int step = 1;
    int port = 0;
    int dim = 0;
    std::string text;
    Place place;
    std::unique_ptr<Block> body;
    std::unique_ptr<Block> elseBody;
};

/// Statements and the locals that are known in them and in the blocks inside.
class Block {
public:
    std::vector<Var*> locals;  ///< in the order of their creation
    std::vector<Stmt> stmts;
};

/// A mistake that was made while a body was described.
struct Mistake {
    std::string text;
    Place place;
};

/// A body under construction: the root block and the blocks that are open in it, innermost last.
class Cfg {
public:
    struct Open {
        Block* block;
        Stmt::Kind kind;
        Place place;
    };

    explicit Cfg(Module& owner, std::string bodyName) : module(owner), name(std::move(bodyName)) {}

    Module& module;
    std::string name;               ///< for messages: the function's name, or "start code", "output code"
    Block root;
    std::vector<Open> open;         ///< blocks inside the root that are not closed yet
    std::vector<Mistake> mistakes;

    Block& innermost() noexcept { return open.empty() ? root : *open.back().block; }
};

/// A library function.
class Fcn {
public:
    Fcn(Module& module, std::string fcnName) : name(fcnName), cfg(module, std::move(fcnName)) {}

    std::string name;
    std::string purpose;                   ///< one or two sentences
    std::string generator;                 ///< class that described it
    std::vector<Var*> inputs;              ///< in order
    std::vector<std::string> inputTexts;   ///< what each input holds; may be shorter than inputs
    int blockNum = 0;                      ///< the last block that asked for it
    Cfg cfg;
};

/// Sources and headers that the generated code is built with, as one call of modifyBuildInfo registered them.
struct BuildModule {
    std::string group;
    std::string name;
    std::vector<std::string> headers;
    std::vector<std::string> sources;
};

/// Owner of everything in the generated code of one model: several blocks may describe themselves into one module.
class ESTTFORM_API Module {
public:
    Module() = default;
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Node* newNode(Node::Kind kind, const Type* type);
    Node* invalid(std::string reason);
    Var* newVar(std::string name, Var::Storage storage, const Type* type, int width, std::string use);
    /// The library function of a name, null when there is none.
    Fcn* find(const std::string& name) noexcept;
    Fcn* newFcn(const std::string& name);

    std::vector<std::unique_ptr<Fcn>> fcns;  ///< a function stands after those that were built for it
    std::vector<std::string> beingBuilt;     ///< names of functions whose bodies are being described
    int blockNum = 0;                        ///< blocks that have begun to describe themselves
    std::vector<std::string> headers;        ///< as AddHeader was given them, each once, in order
    std::vector<BuildModule> buildModules;   ///< each once, in order

private:
    std::vector<std::unique_ptr<Node>> mNodes;
    std::vector<std::unique_ptr<Var>> mVars;
};

/// A constant node; of a single-precision type the value rounded to single.
ESTTFORM_API Node* constant(Module& module, const Type* type, double value);

}  // namespace CG
