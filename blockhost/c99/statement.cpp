#include "statement.h"

#include "c_type.h"
#include "definite.h"
#include "expression.h"
#include "literal.h"

#include <fmt/format.h>

#include <algorithm>

namespace blockhost::c99 {

using CG::Block;
using CG::Stmt;
using CG::Var;

namespace {

/// What a local is initialized with that would else be read before it is written.
std::string initialValue(const Var* var)
{
    const CG::Type* const real = CG::stripMatrixAndComplex(var->type);
    std::string value = literalText(real, 0.0);
    if (CG::isComplex(var->type))
        value = fmt::format("{{{0}, {0}}}", value);
    return var->width > 0 ? "{" + value + "}" : value;
}

}  // namespace

std::string StatementWriter::text(const CG::Node* node)
{
    return expressionText(node, mUnit);
}

bool StatementWriter::hasLocals(const Block& block) const
{
    return std::any_of(block.locals.begin(), block.locals.end(), [this](const Var* var) { return mUsage.isNamed(var); });
}

void StatementWriter::local(const Var* var, const Block& block, NameScope& scope)
{
    const std::string name = scope.add(var->name);
    mUnit.varNames[var] = name;
    std::string declared = mUnit.typeName(var->type) + " " + name;
    if (var->width > 0)
        declared += fmt::format("[{}]", var->width);
    if (isReadBeforeWritten(var, block, mUsage))
        declared += " = " + initialValue(var);
    mLines.lineWithComment(declared + ";", var->use);
}

bool StatementWriter::locals(const Block& block, NameScope& scope)
{
    bool hasAny = false;
    for (const Var* const var : block.locals) {
        if (!mUsage.isNamed(var))
            continue;
        local(var, block, scope);
        hasAny = true;
    }
    return hasAny;
}

void StatementWriter::statements(const Block& block, NameScope& scope)
{
    for (const Stmt& stmt : block.stmts)
        if (!mUsage.isDropped(stmt))
            statement(stmt, scope);
}

void StatementWriter::block(const Block& block, NameScope& scope)
{
    if (locals(block, scope))
        mLines.blank();
    statements(block, scope);
}

void StatementWriter::nested(const Block& inner, const NameScope& around)
{
    NameScope scope(&around);
    block(inner, scope);
}

void StatementWriter::sizeError()
{
    if (!mStep->clearCall.empty())
        mLines.line(mStep->clearCall);
    mLines.line(mStep->errorReturn);
}

std::string StatementWriter::forHead(const Stmt& stmt)
{
    const std::string counter = text(stmt.target);
    if (stmt.kind == Stmt::Kind::CFor)
        return fmt::format("for ({0} = {1}; {2}; {0}{3})", counter, text(stmt.value), text(stmt.condition),
                           stmt.step > 0 ? "++" : "--");
    return fmt::format("for ({0} = {1}; {0} < {2}; {0}++)", counter, literalText(stmt.target->type, 0.0), text(stmt.value));
}

/// An else that holds one if and nothing else becomes "else if".
void StatementWriter::ifStatement(const Stmt& stmt, NameScope& scope)
{
    mLines.open(fmt::format("if ({})", text(stmt.condition)));
    nested(*stmt.body, scope);
    const Block* rest = stmt.elseBody.get();
    while (rest != nullptr && rest->stmts.size() == 1 && rest->stmts[0].kind == Stmt::Kind::If && !hasLocals(*rest)
           && !mUsage.isDropped(rest->stmts[0])) {
        const Stmt& next = rest->stmts[0];
        mLines.otherwise(fmt::format("else if ({})", text(next.condition)));
        nested(*next.body, scope);
        rest = next.elseBody.get();
    }
    if (rest != nullptr && !rest->stmts.empty()) {
        mLines.otherwise("else");
        nested(*rest, scope);
    }
    mLines.close();
}

void StatementWriter::statement(const Stmt& stmt, NameScope& scope)
{
    switch (stmt.kind) {
    case Stmt::Kind::Assign:
        mLines.line(fmt::format("{} = {};", text(stmt.target), text(stmt.value)));
        break;
    case Stmt::Kind::Call:
        mLines.line((stmt.value->type != nullptr ? "(void)" : "") + text(stmt.value) + ";");
        break;
    case Stmt::Kind::Comment:
        mLines.comment(stmt.text);
        break;
    case Stmt::Kind::Increment:
        mLines.line(text(stmt.target) + "++;");
        break;
    case Stmt::Kind::Decrement:
        mLines.line(text(stmt.target) + "--;");
        break;
    case Stmt::Kind::For:
    case Stmt::Kind::CFor:
        mLines.open(forHead(stmt));
        nested(*stmt.body, scope);
        mLines.close();
        break;
    case Stmt::Kind::While:
        mLines.open(fmt::format("while ({})", text(stmt.condition)));
        nested(*stmt.body, scope);
        mLines.close();
        break;
    case Stmt::Kind::If:
        ifStatement(stmt, scope);
        break;
    case Stmt::Kind::Scope:
        if (!hasLocals(*stmt.body)) {
            statements(*stmt.body, scope);
            break;
        }
        mLines.open("");
        nested(*stmt.body, scope);
        mLines.close();
        break;
    case Stmt::Kind::SizeCheck:
        mLines.open(fmt::format("if ({} != {})", text(stmt.value), text(stmt.condition)));
        sizeError();
        mLines.close();
        break;
    case Stmt::Kind::SetOutputDim:
        mLines.line(fmt::format("{}[{}] = {};", mStep->outputSizeNames.at(static_cast<std::size_t>(stmt.port)), stmt.dim,
                                text(stmt.value)));
        break;
    }
}

}  // namespace blockhost::c99
