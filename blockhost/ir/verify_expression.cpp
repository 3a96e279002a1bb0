#include "verify.h"

#include "known_fcns.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace blockhost::ir {

using CG::Node;
using CG::Type;
using CG::isSame;
using CG::typeText;

namespace {

int bitNumOf(const Type* integer) noexcept
{
    return integer->typeId <= sysobj::DT_UINT8 ? 8 : integer->typeId <= sysobj::DT_UINT16 ? 16 : 32;
}

void verifyConst(const Node& node, const Report& report)
{
    if (!CG::isInteger(node.type) && !CG::isBoolean(node.type))
        return;
    const bool isUnsigned = node.type->typeId == sysobj::DT_UINT8 || node.type->typeId == sysobj::DT_UINT16
                            || node.type->typeId == sysobj::DT_UINT32;
    const int bitNum = bitNumOf(node.type);
    const double limit = CG::isBoolean(node.type) ? 2.0 : std::ldexp(1.0, isUnsigned ? bitNum : bitNum - 1);
    const double lowest = isUnsigned || CG::isBoolean(node.type) ? 0.0 : -limit;
    if (std::trunc(node.value) != node.value || !(node.value >= lowest && node.value < limit))
        report(fmt::format("constant {} does not fit into {}", node.value, typeText(node.type)));
}

/// An element of an array of known width, by an index that is known too.
void verifyIndex(const Node& node, const Report& report)
{
    const Node* const array = node.in[0];
    const Node* const idx = node.in[1];
    if (array->kind != Node::Kind::Variable || array->var->width == 0 || idx->kind != Node::Kind::Const)
        return;
    if (!(idx->value >= 0.0 && idx->value < array->var->width))
        report(fmt::format("{}[{}], but it has {} elements", array->var->name, idx->value, array->var->width));
}

void verifyBinary(const Node& node, const Report& report)
{
    const Type* const left = node.in[0]->type;
    const Type* const right = node.in[1]->type;
    const bool isShift = node.op == ">>" || node.op == "<<";
    if (node.in[1]->kind == Node::Kind::Const && CG::isInteger(left)) {
        if ((node.op == "/" || node.op == "%") && node.in[1]->value == 0.0)
            report(fmt::format("{} {} 0", typeText(left), node.op));
        if (isShift && !(node.in[1]->value >= 0.0 && node.in[1]->value < bitNumOf(left)))
            report(fmt::format("{} {} {}: expected 0 to {}", typeText(left), node.op, node.in[1]->value, bitNumOf(left) - 1));
    }
    if (!isSame(left, right) && !(isShift && CG::isInteger(right)))
        report(fmt::format("{} {} {}: expected operands of one type", typeText(left), node.op, typeText(right)));
}

/// "argument 2 of normPts_D_D"
std::string argumentText(const Node& call, std::size_t idx)
{
    return fmt::format("argument {} of {}", idx + 1, call.fcn != nullptr ? call.fcn->name : call.name);
}

/// What a pointer may be given: an array, an element of one, a pointer, a scalar variable.
void verifyPointer(const Node& argument, const Type* input, const std::string& where, const Report& report)
{
    const Type* const wanted = CG::base_type(input);
    const bool isPlace = argument.kind == Node::Kind::Variable || argument.kind == Node::Kind::Index;
    if (!isPlace || CG::base_type(argument.type) != wanted) {
        report(fmt::format("{}: got {}, expected a variable or an array of {}", where, typeText(argument.type), typeText(wanted)));
        return;
    }
    const auto isReadOnly = [](const Type* type) {
        const Type* const target = CG::isPointer(type) ? type->element : type;
        return target->isReadOnly || (CG::isMatrix(target) && target->element->isReadOnly);
    };
    if (isReadOnly(argument.type) && !isReadOnly(input))
        report(fmt::format("{}: got read-only {}, but the function may write to it", where, typeText(wanted)));
}

void verifyCall(const Node& call, const Report& report)
{
    if (call.callee == Node::Callee::External && findExternal(call.name) == nullptr) {
        report(fmt::format("no function {} is known", call.name));
        return;
    }
    if (call.callee == Node::Callee::External && call.type != nullptr && !isSame(call.type, findExternal(call.name)->output))
        report(fmt::format("{} as {}: gives {}", call.name, typeText(call.type), typeText(findExternal(call.name)->output)));
    const std::vector<const Type*> inputs = inputTypesOf(call);
    const std::string name = call.fcn != nullptr ? call.fcn->name : call.name;
    if (call.in.size() != inputs.size()) {
        report(fmt::format("{}: got {} arguments, expected {}", name, call.in.size(), inputs.size()));
        return;
    }
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const Node* const argument = call.in[i];
        if (argument == nullptr)
            report(fmt::format("{} was never set", argumentText(call, i)));
        else if (argument->kind == Node::Kind::Invalid)
            continue;                                    // reported where it stands
        else if (isPointerArgument(call, i))
            verifyPointer(*argument, inputs[i], argumentText(call, i), report);
        else if (!isSame(argument->type, inputs[i]))
            report(fmt::format("{}: got {}, expected {}", argumentText(call, i), typeText(argument->type), typeText(inputs[i])));
    }
}

void verifyNode(const Node* node, std::set<const Node*>& seen, const Report& report)
{
    switch (node->kind) {
    case Node::Kind::Invalid: report(node->name); break;
    case Node::Kind::Assign: report("an assignment within an expression"); break;
    case Node::Kind::Const: verifyConst(*node, report); break;
    case Node::Kind::Binary: verifyBinary(*node, report); break;
    case Node::Kind::Index: verifyIndex(*node, report); break;
    case Node::Kind::Call:
        verifyCall(*node, report);
        if (isCallWithSideEffects(*node) && !seen.insert(node).second)
            report(fmt::format("one call of {} stands in two places", node->fcn != nullptr ? node->fcn->name : node->name));
        break;
    default: break;
    }
    for (const Node* const operand : node->in)
        if (operand != nullptr)
            verifyExpression(operand, seen, report);
}

}  // namespace

void verifyExpression(const Node* node, std::set<const Node*>& seen, const Report& report)
{
    if (node->kind == Node::Kind::Call && node->type == nullptr)
        report(fmt::format("{} gives no result", node->fcn != nullptr ? node->fcn->name : node->name));
    verifyNode(node, seen, report);
}

void verifyCallStatement(const Node* node, std::set<const Node*>& seen, const Report& report)
{
    if (node->kind != Node::Kind::Call && node->kind != Node::Kind::Invalid)
        report("a statement that is no call");
    verifyNode(node, seen, report);
}

void visitNodes(const Node* node, const std::function<void(const Node&)>& visit)
{
    visit(*node);
    for (const Node* const operand : node->in)
        if (operand != nullptr)
            visitNodes(operand, visit);
}

}  // namespace blockhost::ir
