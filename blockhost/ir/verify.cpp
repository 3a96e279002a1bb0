#include "verify.h"

#include "identifier.h"
#include "known_fcns.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>

namespace blockhost::ir {

using CG::Node;
using CG::Stmt;
using CG::Var;

namespace {

constexpr const char* EXPECTED_NAME = "expected letters, digits and underscores, no digit first";

std::string placeText(const CG::Place& place)
{
    const std::string_view file = place.file;
    return file.empty() ? "" : fmt::format(" ({}:{})", file.substr(file.rfind('/') + 1), place.line);
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
    std::string placed(const std::string& text) const;
    void report(const std::string& text);
    void endOf(const Var& local);

    const CG::Cfg& mCfg;
    std::set<const Var*> mVisible;
    const std::set<const CG::Fcn*>& mCallees;
    const BlockCode* mStep;
    std::vector<Violation>& mFound;
    std::set<const Node*>* mSeen = nullptr;
    std::map<const Var*, std::string> mMet;              ///< what is said of a local that nothing writes, where it is met
    std::set<const Var*> mWritten;
    const Stmt* mStmt = nullptr;
    int mStmtNum = 0;
};

std::string BodyVerifier::placed(const std::string& text) const
{
    return fmt::format("{}: statement {}{}: {}", mCfg.name, mStmtNum, placeText(mStmt->place), text);
}

void BodyVerifier::report(const std::string& text)
{
    mFound.push_back({placed(text)});
}

/// The variable that a node is, or is a part of; null for a value.
const Var* placeOf(const Node* node)
{
    while (node->kind == Node::Kind::Index || node->kind == Node::Kind::Real || node->kind == Node::Kind::Imag)
        node = node->in[0];
    return node->kind == Node::Kind::Variable ? node->var : nullptr;
}

void BodyVerifier::use(const Node& node)
{
    if (node.var != nullptr && mVisible.count(node.var) == 0)
        report(fmt::format("{} is not known here", node.var->name));
    if (node.kind == Node::Kind::Variable && mMet.count(node.var) == 0)
        mMet[node.var] = placed(fmt::format("{} is read, but nothing writes it", node.var->name));
    if (node.kind == Node::Kind::InputDim && mStep == nullptr)
        report("sizes are known in a step only");
    if (node.kind != Node::Kind::Call)
        return;
    for (std::size_t i = 0; i < node.in.size(); ++i)
        if (node.in[i] != nullptr && isPointerArgument(node, i))
            mWritten.insert(placeOf(node.in[i]));
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
    const Var* const place = placeOf(node);
    mWritten.insert(place);
    const bool isScalar = node->type != nullptr && node->type->element == nullptr;
    if (place == nullptr || !isScalar)
        report("the target is no variable and no element of one");
    else if (node->type->isReadOnly || place->storage == Var::Storage::InputPort
             || place->storage == Var::Storage::RunTimeParam)
        report(fmt::format("{} is read-only", place->name));
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
    case Stmt::Kind::Decrement:
        target(stmt.target);
        if (stmt.target->kind != Node::Kind::Invalid && !CG::isInteger(stmt.target->type))
            report(fmt::format("one more or less of {}, expected an integer", CG::typeText(stmt.target->type)));
        break;
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

/// What can be said of a local once its block has ended.
void BodyVerifier::endOf(const Var& local)
{
    mVisible.erase(&local);
    if (!isIdentifier(local.name))
        mFound.push_back({fmt::format("{}: local \"{}\": {}", mCfg.name, local.name, EXPECTED_NAME)});
    if (mMet.count(&local) != 0 && mWritten.count(&local) == 0)
        mFound.push_back({mMet[&local]});
}

void BodyVerifier::block(const CG::Block& block)
{
    auto next = block.locals.begin();                    // the first local that is not yet known
    for (std::size_t i = 0; i < block.stmts.size(); ++i) {
        for (; next != block.locals.end() && (*next)->declaredAt <= i; ++next)
            mVisible.insert(*next);
        statement(block.stmts[i]);
    }
    for (const Var* const var : block.locals)
        endOf(*var);
}

void BodyVerifier::run(std::set<const Node*>& seen)
{
    mSeen = &seen;
    for (const CG::Mistake& mistake : mCfg.mistakes)
        mFound.push_back({fmt::format("{}{}: {}", mCfg.name, placeText(mistake.place), mistake.text)});
    for (const CG::Cfg::Open& open : mCfg.open)
        mFound.push_back({fmt::format("{}{}: the block is never closed", mCfg.name, placeText(open.place))});
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
        if (!isIdentifier(fcn->name))
            found.push_back({fmt::format("function \"{}\": {}", fcn->name, EXPECTED_NAME)});
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
