// Expressions of the intermediate representation: nodes, a handle with the operators of the description, and calls.
// The host owns every node. A mistake in an expression (types that do not agree, a null node) is no error here: it is
// found, with the line that appended the statement, when the host verifies the finished tree.
#pragma once

#include "codegen_types.h"

namespace CG {

/// A node of an expression.
class Node;
/// The body of one function while it is described.
class Cfg;
/// A function that was built in the generated code.
class Fcn;

/// Where a generator appends a statement; messages about the statement name it. The default is the caller's line.
struct SourceLoc {
    const char* file;
    int line;

    static constexpr SourceLoc here(const char* file = __builtin_FILE(), int line = __builtin_LINE()) noexcept
    {
        return {file, line};
    }
};

/// Nodes by operation code.
enum class OpCode : int {
    READ,    ///< in 1: a variable
    ASSIGN,  ///< in 1: what is assigned to, in 2: the value. A statement
    INDEX,   ///< in 1: an array or a pointer to one, in 2: an integer counted from 0
    REAL,    ///< in 1: a complex number; may be assigned to
    IMAG,    ///< likewise, the imaginary part
};

// ---- Nodes  [while a block describes itself; host thread]

/// "+", "-", "*", "/", "%", "&", ">>", "<", "<=", ">", ">=", "==", "!=", "&&", "||"; both operands of one type, which the
/// result has, or Boolean for comparisons and connections.
Node* cg_node_create(const char* op, Node* left, Node* right) noexcept;
/// "-" of a number, "!" of a Boolean.
Node* cg_node_create(const char* op, Node* operand) noexcept;
Node* cg_node_create(OpCode op, Node* in1, Node* in2 = nullptr) noexcept;
/// A constant of the same type as another node.
Node* cg_node_create_const_like(Node* other, double value) noexcept;
/// The value converted to a type, as in C; real to integer is truncated, a value out of range gives the most negative one.
Node* cg_node_create_cast(const Type* type, Node* value) noexcept;
const Type* getType(const Node* node) noexcept;

/// An expression: a node by value, with the operators of the description. Null when default-constructed.
class Expr {
public:
    Expr() = default;
    Expr(Node* node) noexcept : mNode(node) {}

    Node* node() const noexcept { return mNode; }
    bool isNull() const noexcept { return mNode == nullptr; }
    /// An element; also of a pointer to an array.
    Expr operator[](Expr idx) const noexcept { return cg_node_create(OpCode::INDEX, mNode, idx.mNode); }
    Expr operator[](int idx) const noexcept;

private:
    Node* mNode = nullptr;
};

/// An index constant: int32.
Node* cg_node_create_index(Node* other, int value) noexcept;
inline Expr Expr::operator[](int idx) const noexcept
{
    return cg_node_create(OpCode::INDEX, mNode, cg_node_create_index(mNode, idx));
}

// The operators take expressions of one type, or an expression and a constant that becomes one of its type.
#define CG_BINARY(op)                                                                                              \
    inline Expr operator op(Expr left, Expr right) noexcept                                                         \
    {                                                                                                              \
        return cg_node_create(#op, left.node(), right.node());                                                     \
    }                                                                                                              \
    inline Expr operator op(Expr left, double right) noexcept                                                      \
    {                                                                                                              \
        return cg_node_create(#op, left.node(), cg_node_create_const_like(left.node(), right));                    \
    }                                                                                                              \
    inline Expr operator op(double left, Expr right) noexcept                                                      \
    {                                                                                                              \
        return cg_node_create(#op, cg_node_create_const_like(right.node(), left), right.node());                   \
    }
CG_BINARY(+)
CG_BINARY(-)
CG_BINARY(*)
CG_BINARY(/)
CG_BINARY(<)
CG_BINARY(<=)
CG_BINARY(>)
CG_BINARY(>=)
CG_BINARY(==)
CG_BINARY(!=)
CG_BINARY(%)
CG_BINARY(&)
CG_BINARY(>>)
CG_BINARY(&&)
CG_BINARY(||)
#undef CG_BINARY

inline Expr operator-(Expr operand) noexcept { return cg_node_create("-", operand.node()); }
inline Expr operator!(Expr operand) noexcept { return cg_node_create("!", operand.node()); }
inline Expr real(Expr value) noexcept { return cg_node_create(OpCode::REAL, value.node()); }
inline Expr imag(Expr value) noexcept { return cg_node_create(OpCode::IMAG, value.node()); }

// ---- Calls

/// A call of a function of the generated code; its arguments are still to be set.
Node* cg_node_create_fcn_call_with_aux_in(Fcn* fcn) noexcept;
/// A call of a function that the generated code does not define.
///
/// @param graph      body that calls
/// @param isGlobal   the name is looked up in the global scope
/// @param inputNum, outputNum  arguments, and 0 or 1 results
Node* cg_node_create_untyped_external_function_call(Cfg* graph, bool isGlobal, const char* name, int inputNum,
                                                    int outputNum) noexcept;
/// Argument idx, counted from 1. An element of an array given to a pointer parameter, or to an external function, is
/// passed by its address; so is a scalar variable given to a pointer parameter.
void cg_node_set_in_data(Node* call, int idx, Node* argument) noexcept;
void cg_node_set_output_type(Node* call, const Type* type) noexcept;

/// A function of the language that needs no call by name: "sqrt" and "abs" of real floating-point types.
class IntrinsicFcn {
public:
    /// @return null when there is none of that name for the type
    static const IntrinsicFcn* lookup(const char* name, const Type* type) noexcept;
    /// The function of an argument.
    Expr operator()(Expr argument) const noexcept;

private:
    const char* mName;
    const Type* mType;
    IntrinsicFcn(const char* name, const Type* type) noexcept : mName(name), mType(type) {}
    friend struct IntrinsicTable;
};

}  // namespace CG
