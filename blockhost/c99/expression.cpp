#include "expression.h"

#include "c_type.h"
#include "literal.h"
#include "usage.h"

#include <algorithm>
#include <cmath>

namespace blockhost::c99 {

using CG::Node;

namespace {

/// Binding strength of C's operators; a smaller one binds tighter.
enum Precedence : int {
    PRIMARY = 1,
    UNARY,
    MULTIPLICATIVE,
    ADDITIVE,
    SHIFT,
    RELATIONAL,
    EQUALITY,
    BIT_AND,
    LOGICAL_AND,
    LOGICAL_OR,
};

struct Operator {
    const char* text;
    Precedence precedence;
};

constexpr Operator BINARY[] = {
    {"*", MULTIPLICATIVE}, {"/", MULTIPLICATIVE}, {"%", MULTIPLICATIVE}, {"+", ADDITIVE},       {"-", ADDITIVE},
    {">>", SHIFT},         {"<", RELATIONAL},     {"<=", RELATIONAL},    {">", RELATIONAL},     {">=", RELATIONAL},
    {"==", EQUALITY},      {"!=", EQUALITY},      {"&", BIT_AND},        {"&&", LOGICAL_AND},   {"||", LOGICAL_OR},
};

Precedence precedenceOf(const std::string& op)
{
    return std::find_if(std::begin(BINARY), std::end(BINARY), [&op](const Operator& entry) { return entry.text == op; })
        ->precedence;
}

struct Text {
    std::string text;
    Precedence precedence;
};

class Writer {
public:
    explicit Writer(Unit& unit) : mUnit(unit) {}
    Text write(const Node* node);

private:
    Text constant(const Node* node);
    Text binary(const Node* node);
    Text unary(const Node* node);
    Text cast(const CG::Type* type, const Node* value);
    Text call(const Node* node);
    std::string argument(const Node* call, std::size_t idx);
    std::string arguments(const Node* call);
    /// The node as an operand: in parentheses unless it binds at least as tight as the weakest admitted.
    std::string operand(const Node* node, Precedence weakest);
    /// The result of C's computation in int, as the type that the tree means.
    Text narrowed(const Node* node, Text computed);

    Unit& mUnit;
};

std::string Writer::operand(const Node* node, Precedence weakest)
{
    const Text inner = write(node);
    return inner.precedence <= weakest ? inner.text : "(" + inner.text + ")";
}

Text Writer::constant(const Node* node)
{
    mUnit.needsMath = mUnit.needsMath || needsMathHeader(node->type, node->value);
    const std::string text = literalText(node->type, node->value);
    const bool isUnary = text.front() == '-' || (!std::isfinite(node->value) && CG::isReal(node->type));
    return {text, isUnary ? UNARY : PRIMARY};
}

Text Writer::narrowed(const Node* node, Text computed)
{
    if (!isNarrow(node->type))
        return computed;
    return {"(" + cTypeName(node->type) + ")(" + computed.text + ")", UNARY};
}

/// Compilers warn of && inside ||, of sums inside shifts and of comparisons inside comparisons or &: those get parentheses
/// that precedence does not ask for.
Text Writer::binary(const Node* node)
{
    const Precedence own = precedenceOf(node->op);
    Precedence weakest = own;
    if (own == LOGICAL_OR || own == RELATIONAL || own == EQUALITY || own == BIT_AND || own == SHIFT)
        weakest = own == LOGICAL_OR ? EQUALITY : own == SHIFT ? MULTIPLICATIVE : own == BIT_AND ? MULTIPLICATIVE : SHIFT;
    const bool isChain = own == LOGICAL_OR && node->in[0]->kind == Node::Kind::Binary && node->in[0]->op == node->op;
    const std::string left = isChain ? operand(node->in[0], own) : operand(node->in[0], weakest);
    const std::string right = operand(node->in[1], std::min(weakest, static_cast<Precedence>(own - 1)));
    return narrowed(node, {left + " " + node->op + " " + right, own});
}

Text Writer::unary(const Node* node)
{
    std::string inner = operand(node->in[0], UNARY);
    if (inner.front() == '-')
        inner = "(" + inner + ")";
    return narrowed(node, {node->op + inner, UNARY});
}

Text Writer::cast(const CG::Type* type, const Node* value)
{
    const bool isTruncation = CG::isReal(value->type) && CG::isInteger(type);
    if (!isTruncation)
        return {"(" + mUnit.typeName(type) + ")" + operand(value, UNARY), UNARY};
    return {mUnit.conversion(value->type, type) + "(" + write(value).text + ")", PRIMARY};
}

/// An array is passed as it is, from another element than its first one on by that element's address.
std::string Writer::argument(const Node* call, std::size_t idx)
{
    const Node* const node = call->in[idx];
    if (passedByAddress(call, idx) == nullptr)
        return write(node).text;
    if (node->kind == Node::Kind::Index) {
        const Node* const position = node->in[1];
        const bool isWhole = position->kind == Node::Kind::Const && position->value == 0.0;
        return isWhole ? operand(node->in[0], PRIMARY) : "&" + operand(node, UNARY);
    }
    const bool isArray = node->var->width > 0 || isPassedByAddress(node->var->type);
    return isArray ? write(node).text : "&" + write(node).text;
}

std::string Writer::arguments(const Node* call)
{
    std::string text;
    for (std::size_t i = 0; i < call->in.size(); ++i)
        text += (i > 0 ? ", " : "") + argument(call, i);
    return "(" + text + ")";
}

Text Writer::call(const Node* node)
{
    if (node->callee == Node::Callee::Library)
        return {mUnit.fcnNames.at(node->fcn) + arguments(node), PRIMARY};
    if (isPlatformFcn(node->name)) {
        const std::string text = mUnit.platformMacro(node->name) + arguments(node);
        return node->type != nullptr ? Text{"(" + cTypeName(node->type) + ")" + text, UNARY} : Text{text, PRIMARY};
    }
    if (node->callee == Node::Callee::External)
        return {node->name + arguments(node), PRIMARY};
    mUnit.needsMath = true;
    const std::string name = node->name == "abs" ? "fabs" : node->name;
    return {name + (CG::SingleType::isa(node->type) ? "f" : "") + arguments(node), PRIMARY};
}

Text Writer::write(const Node* node)
{
    switch (node->kind) {
    case Node::Kind::Const: return constant(node);
    case Node::Kind::Variable: return {mUnit.varNames.at(node->var), PRIMARY};
    case Node::Kind::Index: return {operand(node->in[0], PRIMARY) + "[" + write(node->in[1]).text + "]", PRIMARY};
    case Node::Kind::Real: return {operand(node->in[0], PRIMARY) + ".re", PRIMARY};
    case Node::Kind::Imag: return {operand(node->in[0], PRIMARY) + ".im", PRIMARY};
    case Node::Kind::Unary: return unary(node);
    case Node::Kind::Binary: return binary(node);
    case Node::Kind::Cast: return cast(node->type, node->in[0]);
    case Node::Kind::Call: return call(node);
    case Node::Kind::InputDim: return {mUnit.sizeNames.at(node->var) + "[" + std::to_string(node->dim) + "]", PRIMARY};
    case Node::Kind::Assign:
    case Node::Kind::Invalid: break;
    }
    return {"", PRIMARY};                                // not in a verified tree
}

}  // namespace

std::string expressionText(const Node* node, Unit& unit)
{
    return Writer(unit).write(node).text;
}

}  // namespace blockhost::c99
