// Building expressions: what host/codegen_nodes.h declares. A node that cannot be made is made invalid, with the reason.
#include "tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace CG {

Node* Module::newNode(Node::Kind kind, const Type* type)
{
    mNodes.push_back(std::make_unique<Node>());
    Node& node = *mNodes.back();
    node.kind = kind;
    node.type = type;
    node.module = this;
    return &node;
}

Node* Module::invalid(std::string reason)
{
    Node* const node = newNode(Node::Kind::Invalid, nullptr);
    node->name = std::move(reason);
    return node;
}

Var* Module::newVar(std::string name, Var::Storage storage, const Type* type, int width, std::string use)
{
    mVars.push_back(std::make_unique<Var>());
    Var& var = *mVars.back();
    var.name = std::move(name);
    var.storage = storage;
    var.type = type;
    var.width = width;
    var.use = std::move(use);
    return &var;
}

Fcn* Module::find(const std::string& name) noexcept
{
    for (const auto& fcn : fcns)
        if (fcn->name == name)
            return fcn.get();
    return nullptr;
}

Fcn* Module::newFcn(const std::string& name)
{
    fcns.push_back(std::make_unique<Fcn>(*this, name));
    return fcns.back().get();
}

Node* constant(Module& module, const Type* type, double value)
{
    if (!isReal(type) && !isInteger(type) && !isBoolean(type))
        return module.invalid(fmt::format("constant of {}: expected a number or Boolean", typeText(type)));
    Node* const node = module.newNode(Node::Kind::Const, withoutReadOnly(type));
    node->value = SingleType::isa(type) ? static_cast<double>(static_cast<float>(value)) : value;
    return node;
}

namespace {

bool isInvalid(const Node* node) noexcept
{
    return node == nullptr || node->kind == Node::Kind::Invalid;
}

/// The first reason why operands cannot be used, as an invalid node; null when all can. Without any module (every operand
/// null) there is nobody to own a node, and the caller gives null.
Node* objection(const char* what, std::initializer_list<Node*> operands)
{
    Module* module = nullptr;
    for (Node* const operand : operands)
        if (operand != nullptr)
            module = operand->module;
    for (Node* const operand : operands) {
        if (operand == nullptr)
            return module != nullptr ? module->invalid(fmt::format("{}: an operand is missing", what)) : nullptr;
        if (isInvalid(operand))
            return operand;
    }
    return nullptr;
}

bool isAnyNull(std::initializer_list<Node*> operands) noexcept
{
    return std::all_of(operands.begin(), operands.end(), [](Node* operand) { return operand == nullptr; });
}

bool isOneOf(const char* op, std::initializer_list<const char*> ops) noexcept
{
    return std::any_of(ops.begin(), ops.end(), [op](const char* candidate) { return std::strcmp(op, candidate) == 0; });
}

/// Type of the result of an operator, null when it does not take the operands.
const Type* resultOf(const char* op, const Type* operand) noexcept
{
    const bool isNumber = isReal(operand) || isInteger(operand);
    if (isOneOf(op, {"+", "-", "*", "/"}))
        return isNumber ? withoutReadOnly(operand) : nullptr;
    if (isOneOf(op, {"%", "&", ">>"}))
        return isInteger(operand) ? withoutReadOnly(operand) : nullptr;
    if (isOneOf(op, {"<", "<=", ">", ">="}))
        return isNumber ? booleanT() : nullptr;
    if (isOneOf(op, {"==", "!="}))
        return isNumber || isBoolean(operand) ? booleanT() : nullptr;
    if (isOneOf(op, {"&&", "||"}))
        return isBoolean(operand) ? booleanT() : nullptr;
    return nullptr;
}

const Type* elementOf(const Type* array) noexcept
{
    if (isPointer(array))
        array = array->element;
    return isMatrix(array) ? array->element : nullptr;
}

/// Read-only survives from an array to its elements.
const Type* elementTypeOf(const Type* array) noexcept
{
    const Type* const element = elementOf(array);
    const bool isReadOnly = array != nullptr && (isPointer(array) ? array->element : array)->isReadOnly;
    return isReadOnly ? readOnlyT(element) : element;
}

Node* indexNode(Node* array, Node* idx)
{
    const Type* const element = elementTypeOf(array->type);
    if (element == nullptr)
        return array->module->invalid(fmt::format("an element of {}: expected an array", typeText(array->type)));
    if (!isInteger(idx->type))
        return array->module->invalid(fmt::format("index of type {}, expected an integer", typeText(idx->type)));
    Node* const node = array->module->newNode(Node::Kind::Index, element);
    node->in = {array, idx};
    return node;
}

Node* partNode(Node::Kind kind, Node* number)
{
    if (!isComplex(number->type) || number->type->element != nullptr)
        return number->module->invalid(fmt::format("part of {}: expected a complex number", typeText(number->type)));
    Node* const node = number->module->newNode(kind, stripMatrixAndComplex(number->type));
    node->in = {number};
    return node;
}

}  // namespace

Node* cg_node_create(const char* op, Node* left, Node* right) noexcept
{
    if (isAnyNull({left, right}))
        return nullptr;
    if (Node* const reason = objection(op, {left, right}))
        return reason;
    Module& module = *left->module;
    const bool isShift = std::strcmp(op, ">>") == 0;
    if (!isSame(left->type, right->type) && !(isShift && isInteger(right->type)))
        return module.invalid(fmt::format("{} {} {}: expected operands of one type", typeText(left->type), op,
                                          typeText(right->type)));
    const Type* const type = resultOf(op, left->type);
    if (type == nullptr)
        return module.invalid(fmt::format("operator {} does not take {}", op, typeText(left->type)));
    Node* const node = module.newNode(Node::Kind::Binary, type);
    node->op = op;
    node->in = {left, right};
    return node;
}

Node* cg_node_create(const char* op, Node* operand) noexcept
{
    if (operand == nullptr || isInvalid(operand))
        return operand;
    const bool isNot = std::strcmp(op, "!") == 0;
    const bool isAdmitted = isNot ? isBoolean(operand->type)
                                  : std::strcmp(op, "-") == 0 && (isReal(operand->type) || isInteger(operand->type));
    if (!isAdmitted)
        return operand->module->invalid(fmt::format("operator {} does not take {}", op, typeText(operand->type)));
    Node* const node = operand->module->newNode(Node::Kind::Unary, withoutReadOnly(operand->type));
    node->op = op;
    node->in = {operand};
    return node;
}

Node* cg_node_create(OpCode op, Node* in1, Node* in2) noexcept
{
    const bool isUnary = op == OpCode::READ || op == OpCode::REAL || op == OpCode::IMAG;
    if (isUnary ? in1 == nullptr : isAnyNull({in1, in2}))
        return nullptr;
    Node* const reason = isUnary ? objection("operation", {in1}) : objection("operation", {in1, in2});
    if (reason != nullptr)
        return reason;
    switch (op) {
    case OpCode::READ: return in1;
    case OpCode::INDEX: return indexNode(in1, in2);
    case OpCode::REAL: return partNode(Node::Kind::Real, in1);
    case OpCode::IMAG: return partNode(Node::Kind::Imag, in1);
    case OpCode::ASSIGN: break;
    }
    Node* const node = in1->module->newNode(Node::Kind::Assign, nullptr);
    node->in = {in1, in2};
    return node;
}

Node* cg_node_create_const_like(Node* other, double value) noexcept
{
    if (other == nullptr || isInvalid(other))
        return other;
    return constant(*other->module, other->type, value);
}

Node* cg_node_create_index(Node* other, int value) noexcept
{
    return other != nullptr ? constant(*other->module, int32T(), value) : nullptr;
}

Node* cg_node_create_cast(const Type* type, Node* value) noexcept
{
    if (value == nullptr || isInvalid(value) || isSame(type, value->type))
        return value;
    const auto isScalar = [](const Type* t) { return isReal(t) || isInteger(t) || isBoolean(t); };
    if (!isScalar(type) || !isScalar(value->type))
        return value->module->invalid(fmt::format("cannot convert {} to {}", typeText(value->type), typeText(type)));
    Node* const node = value->module->newNode(Node::Kind::Cast, withoutReadOnly(type));
    node->in = {value};
    return node;
}

const Type* getType(const Node* node) noexcept
{
    return node != nullptr ? node->type : nullptr;
}

// ---- Calls

Node* cg_node_create_fcn_call_with_aux_in(Fcn* fcn) noexcept
{
    if (fcn == nullptr)
        return nullptr;
    Node* const node = fcn->cfg.module.newNode(Node::Kind::Call, nullptr);
    node->callee = Node::Callee::Library;
    node->fcn = fcn;
    node->in.resize(fcn->inputs.size());
    return node;
}

Node* cg_node_create_untyped_external_function_call(Cfg* graph, bool, const char* name, int inputNum, int) noexcept
{
    Node* const node = graph->module.newNode(Node::Kind::Call, nullptr);
    node->callee = Node::Callee::External;
    node->name = name;
    node->in.resize(static_cast<std::size_t>(std::max(inputNum, 0)));
    return node;
}

void cg_node_set_in_data(Node* call, int idx, Node* argument) noexcept
{
    if (call == nullptr || call->kind != Node::Kind::Call)
        return;
    const auto position = static_cast<std::size_t>(std::max(idx, 1) - 1);
    if (position >= call->in.size())
        call->in.resize(position + 1);                   // one too many: the verifier says so
    call->in[position] = argument;
}

void cg_node_set_output_type(Node* call, const Type* type) noexcept
{
    if (call != nullptr)
        call->type = type;
}

// ---- Intrinsics

struct IntrinsicTable {
    static const IntrinsicFcn* lookup(const char* name, const Type* type) noexcept
    {
        static const IntrinsicFcn FCNS[] = {{"sqrt", doubleT()}, {"sqrt", singleT()}, {"abs", doubleT()}, {"abs", singleT()}};
        for (const IntrinsicFcn& fcn : FCNS)
            if (std::strcmp(fcn.mName, name) == 0 && isSame(fcn.mType, type))
                return &fcn;
        return nullptr;
    }
};

const IntrinsicFcn* IntrinsicFcn::lookup(const char* name, const Type* type) noexcept
{
    return IntrinsicTable::lookup(name, type);
}

Expr IntrinsicFcn::operator()(Expr argument) const noexcept
{
    if (argument.node() == nullptr)                      // !argument would be an expression
        return argument;
    Node* const node = argument.node()->module->newNode(Node::Kind::Call, mType);
    node->callee = Node::Callee::Intrinsic;
    node->name = mName;
    node->in = {argument.node()};
    return node;
}

}  // namespace CG
