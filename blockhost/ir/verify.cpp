#include "verify.h"

#include "known_fcns.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace blockhost::ir {

using CG::Node;
using CG::Stmt;
using CG::Var;

namespace {

std::string placeText(const CG::SourceLoc& loc)
{
    const std::string_view file = loc.file;
    return file.empty() ? "" : fmt::format(" ({}:{})", file.substr(file.rfind('/') + 1), loc.line);
}

/// Verifies one body. Statements are counted from 1 in the order of the text.
class BodyVerifier {
public:
    /// @param visible  variables that the body knows from outside: signals of its block, inputs of its function
    /// @param callees  functions that may be called: those that were complete before
    /// @param step     block whose step the body belongs to; null outside
    BodyVerifier(const CG::Cfg& cfg, std::set<const Var*> visible, const std::set<const CG::Fcn*>& callees,
                 const BlockCode* step, std::vector<Violation>& found)
        : mCfg(cfg), mVisible(std::move(visible)), mCallees(callees), mStep(step), mFound(found)
    {
    }

    void run(std::set<const Node*>& seen);

private:
    void block(const CG::Block& block);
    void statement(const Stmt& stmt);
    void target(const Node* node);
    void assignment(const Stmt& stmt);
    void condition(const Node* node);
    void loop(const Stmt& stmt);
    void sizes(const Stmt& stmt);
    void expression(const Node* node);
    void use(const Node& node);
    void names(const Node* node);
    void report(const std::string& text);

    const CG::Cfg& mCfg;
    std::set<const Var*> mVisible;
    const std::set<const CG::Fcn*>& mCallees;
    const BlockCode* mStep;
    std::vector<Violation>& mFound;
    std::set<const Node*>* mSeen = nullptr;
    const Stmt* mStmt = nullptr;
    int mStmtNum = 0;
};

void BodyVerifier::report(const std::string& text)
{
    mFound.push_back({fmt::format("{}: statement {}{}: {}", mCfg.name, mStmtNum, placeText(mStmt->loc), text)});
}

void BodyVerifier::use(const Node& node)
{
    if (node.var != nullptr && mVisible.count(node.var) == 0)
        report(fmt::format("{} is not known here", node.var->name));
    if (node.kind != Node::Kind::Call)
        return;
    if (node.fcn != nullptr && mCallees.count(node.fcn) == 0)
        report(fmt::format("{} is no function that was complete before", node.fcn->name));
    const KnownFcn* const external = node.callee == Node::Callee::External ? findExternal(node.name) : nullptr;
    const std::vector<std::string>& headers = mCfg.module.headers;
    if (external != nullptr && std::find(headers.begin(), headers.end(), external->header) == headers.end())
        report(fmt::format("{} needs the header {}, which was not added", node.name, external->header));
}

void BodyVerifier::names(const Node* node)
{
    visitNodes(node, [this](const Node& inner) { use(inner); });
}

void BodyVerifier::expression(const Node* node)
{
    names(node);
    verifyExpression(node, *mSeen, [this](const std::string& text) { report(text); });
}

void BodyVerifier::target(const Node* node)
{
    expression(node);
    if (node->kind == Node::Kind::Invalid)
        return;
    const Node* place = node;
    while (place->kind == Node::Kind::Index || place->kind == Node::Kind::Real || place->kind == Node::Kind::Imag)
        place = place->in[0];
    const bool isScalar = node->type != nullptr && node->type->element == nullptr;
    if (place->kind != Node::Kind::Variable || !isScalar)
        report("the target is no variable and no element of one");
    else if (node->type->isReadOnly || place->var->storage == Var::Storage::InputPort
             || place->var->storage == Var::Storage::RunTimeParam)
        report(fmt::format("{} is read-only", place->var->name));
}

void BodyVerifier::assignment(const Stmt& stmt)
{
    target(stmt.target);
    expression(stmt.value);
    const bool isKnown = stmt.target->kind != Node::Kind::Invalid && stmt.value->kind != Node::Kind::Invalid;
    if (isKnown && !CG::isSame(stmt.target->type, stmt.value->type))
        report(fmt::format("{} is assigned to {}", CG::typeText(stmt.value->type), CG::typeText(stmt.target->type)));
}

void BodyVerifier::condition(const Node* node)
{
    if (node == nullptr) {
        report("a condition is missing");
        return;
    }
    expression(node);
    if (node->kind != Node::Kind::Invalid && !CG::isBoolean(node->type))
        report(fmt::format("condition of {}, expected boolean", CG::typeText(node->type)));
}

void BodyVerifier::loop(const Stmt& stmt)
{
    assignment(stmt);
    const bool isCounter = stmt.target->kind == Node::Kind::Variable && CG::isInteger(stmt.target->type);
    if (!isCounter && stmt.target->kind != Node::Kind::Invalid)
        report(fmt::format("counter of {}, expected an integer variable", CG::typeText(stmt.target->type)));
    if (stmt.kind == Stmt::Kind::CFor)
        condition(stmt.condition);
}

void BodyVerifier::sizes(const Stmt& stmt)
{
    expression(stmt.value);
    const CG::Type* const type = stmt.value->type;
    if (mStep == nullptr)
        report("sizes are known in a step only");
    else if (stmt.kind == Stmt::Kind::SizeCheck) {
        expression(stmt.condition);
        if (!CG::isSame(type, stmt.condition->type) || !(CG::isInteger(type) || CG::isBoolean(type)))
            report(fmt::format("sizes of {} and {}, expected integers or Booleans", CG::typeText(type),
                               CG::typeText(stmt.condition->type)));
    } else if (stmt.port < 0 || static_cast<std::size_t>(stmt.port) >= mStep->outputs.size()
               || !mStep->outputs[static_cast<std::size_t>(stmt.port)].isVariable || stmt.dim < 0
               || stmt.dim >= mStep->outputs[static_cast<std::size_t>(stmt.port)].dims.num())
        report(fmt::format("output port {} has no variable size along dimension {}", stmt.port, stmt.dim));
    else if (!CG::isSame(type, CG::int32T()))
        report(fmt::format("size of {}, expected int32", CG::typeText(type)));
}

void BodyVerifier::statement(const Stmt& stmt)
{
    ++mStmtNum;
    mStmt = &stmt;
    switch (stmt.kind) {
    case Stmt::Kind::Comment:
    case Stmt::Kind::Scope: break;
    case Stmt::Kind::Assign: assignment(stmt); break;
    case Stmt::Kind::Increment:
    case Stmt::Kind::Decrement: target(stmt.target); break;
    case Stmt::Kind::Call:
        names(stmt.value);
        verifyCallStatement(stmt.value, *mSeen, [this](const std::string& text) { report(text); });
        break;
    case Stmt::Kind::For:
    case Stmt::Kind::CFor: loop(stmt); break;
    case Stmt::Kind::While:
    case Stmt::Kind::If: condition(stmt.condition); break;
    case Stmt::Kind::SizeCheck:
    case Stmt::Kind::SetOutputDim: sizes(stmt); break;
    }
    if (stmt.body)
        block(*stmt.body);
    if (stmt.elseBody)
        block(*stmt.elseBody);
}

void BodyVerifier::block(const CG::Block& block)
{
    mVisible.insert(block.locals.begin(), block.locals.end());
    for (const Stmt& stmt : block.stmts)
        statement(stmt);
    for (const Var* const var : block.locals)
        mVisible.erase(var);
}

void BodyVerifier::run(std::set<const Node*>& seen)
{
    mSeen = &seen;
    for (const CG::Mistake& mistake : mCfg.mistakes)
        mFound.push_back({fmt::format("{}{}: {}", mCfg.name, placeText(mistake.loc), mistake.text)});
    for (const CG::Cfg::Open& open : mCfg.open)
        mFound.push_back({fmt::format("{}{}: the block is never closed", mCfg.name, placeText(open.loc))});
    block(mCfg.root);
}

std::set<const Var*> signalsOf(const BlockCode& block)
{
    std::set<const Var*> signals(block.workVectors.begin(), block.workVectors.end());
    for (const auto* const ports : {&block.inputs, &block.outputs})
        for (const PortInfo& port : *ports)
            signals.insert(port.var);
    for (const ParamInfo& param : block.params)
        signals.insert(param.var);
    return signals;
}

}  // namespace

std::vector<Violation> verify(const Model& model)
{
    std::vector<Violation> found;
    for (const std::string& header : model.module.headers)
        if (!isKnownHeader(header))
            found.push_back({fmt::format("header {}: no such header is known", header)});
    std::set<const Node*> seen;
    std::set<const CG::Fcn*> complete;
    for (const auto& fcn : model.module.fcns) {
        BodyVerifier(fcn->cfg, {fcn->inputs.begin(), fcn->inputs.end()}, complete, nullptr, found).run(seen);
        complete.insert(fcn.get());
    }
    for (const auto& block : model.blocks) {
        const std::set<const Var*> signals = signalsOf(*block);
        BodyVerifier(block->start, signals, complete, nullptr, found).run(seen);
        BodyVerifier(block->sizeRules, signals, complete, block.get(), found).run(seen);
        BodyVerifier(block->output, signals, complete, block.get(), found).run(seen);
    }
    return found;
}

}  // namespace blockhost::ir
