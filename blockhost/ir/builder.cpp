// Appending to a body: what host/codegen_builder.h declares.
#include "tree.h"

#include <fmt/format.h>

namespace CG {

namespace {

const char* nameOf(Stmt::Kind kind) noexcept
{
    switch (kind) {
    case Stmt::Kind::For: return "for";
    case Stmt::Kind::CFor: return "counted for";
    case Stmt::Kind::While: return "while";
    case Stmt::Kind::If: return "if";
    case Stmt::Kind::Scope: return "scope";
    default: return "statement";
    }
}

Stmt& newStmt(Cfg& cfg, Stmt::Kind kind, SourceLoc loc)
{
    cfg.innermost().stmts.emplace_back();
    Stmt& stmt = cfg.innermost().stmts.back();
    stmt.kind = kind;
    stmt.place = loc;
    return stmt;
}

/// Appends a statement with a body and opens the body.
Stmt& openStmt(Cfg& cfg, Stmt::Kind kind, SourceLoc loc)
{
    Stmt& stmt = newStmt(cfg, kind, loc);
    stmt.body = std::make_unique<Block>();
    cfg.open.push_back({stmt.body.get(), kind, loc});
    return stmt;
}

/// The statement whose body is open innermost: the last one of the block around.
Stmt* openedStmt(Cfg& cfg, Stmt::Kind kind, const char* what, SourceLoc loc)
{
    if (cfg.open.empty() || cfg.open.back().kind != kind) {
        const std::string innermost = cfg.open.empty() ? "no block" : fmt::format("a {} block", nameOf(cfg.open.back().kind));
        cfg.mistakes.push_back({fmt::format("{} where {} is open", what, innermost), loc});
        return nullptr;
    }
    Block& around = cfg.open.size() > 1 ? *cfg.open[cfg.open.size() - 2].block : cfg.root;
    return &around.stmts.back();
}

void close(Cfg& cfg, Stmt::Kind kind, SourceLoc loc)
{
    if (openedStmt(cfg, kind, fmt::format("end of a {} block", nameOf(kind)).c_str(), loc) != nullptr)
        cfg.open.pop_back();
}

/// A node for an expression that is missing altogether.
Node* given(Cfg& cfg, Expr expr)
{
    return !expr.isNull() ? expr.node() : cfg.module.invalid("an expression is missing");
}

}  // namespace

Expr StatementBuilder::createLocal(const char* name, int typeId, int width, const char* use, SourceLoc loc)
{
    return createLocal(name, GetCGType(typeId), width, use, loc);
}

Expr StatementBuilder::createLocal(const char* name, const Type* type, int width, const char* use, SourceLoc loc)
{
    Module& module = mCfg->module;
    if (type == nullptr || width < 0) {
        mCfg->mistakes.push_back({fmt::format("local \"{}\": got {} and width {}, expected a type and a width of at least 0",
                                              name, typeText(type), width), loc});
        return module.invalid(fmt::format("local \"{}\" has no type", name));
    }
    Var* const var = module.newVar(name, Var::Storage::Local, type, width, use != nullptr ? use : "");
    Block& block = mCfg->innermost();
    var->declaredAt = block.stmts.size();
    block.locals.push_back(var);
    Node* const node = module.newNode(Node::Kind::Variable, width > 0 ? staticUnknownMatrixT(type) : type);
    node->var = var;
    return node;
}

Expr StatementBuilder::getConstScalar(const Type* type, double value)
{
    return constant(mCfg->module, type, value);
}

void StatementBuilder::Assign(Expr target, Expr value, SourceLoc loc)
{
    Stmt& stmt = newStmt(*mCfg, Stmt::Kind::Assign, loc);
    stmt.target = given(*mCfg, target);
    stmt.value = given(*mCfg, value);
}

void StatementBuilder::Assign(Expr target, double value, SourceLoc loc)
{
    Assign(target, Expr(cg_node_create_const_like(target.node(), value)), loc);
}

void StatementBuilder::AppendStatement(Node* call, SourceLoc loc)
{
    if (call != nullptr && call->kind == Node::Kind::Assign) {
        Assign(call->in[0], Expr(call->in[1]), loc);
        return;
    }
    newStmt(*mCfg, Stmt::Kind::Call, loc).value = given(*mCfg, call);
}

void StatementBuilder::append(const char* comment, SourceLoc loc)
{
    newStmt(*mCfg, Stmt::Kind::Comment, loc).text = comment;
}

void StatementBuilder::increment(Expr variable, SourceLoc loc)
{
    newStmt(*mCfg, Stmt::Kind::Increment, loc).target = given(*mCfg, variable);
}

void StatementBuilder::decrement(Expr variable, SourceLoc loc)
{
    newStmt(*mCfg, Stmt::Kind::Decrement, loc).target = given(*mCfg, variable);
}

// ---- Blocks

void StatementBuilder::beginFor(Expr counter, Expr bound, SourceLoc loc)
{
    Stmt& stmt = openStmt(*mCfg, Stmt::Kind::For, loc);
    stmt.target = given(*mCfg, counter);
    stmt.value = given(*mCfg, bound);
}

void StatementBuilder::endFor(SourceLoc loc) { close(*mCfg, Stmt::Kind::For, loc); }

void StatementBuilder::beginCFor(Expr counter, Expr first, Expr condition, int step, SourceLoc loc)
{
    Stmt& stmt = openStmt(*mCfg, Stmt::Kind::CFor, loc);
    stmt.target = given(*mCfg, counter);
    stmt.value = given(*mCfg, first);
    stmt.condition = given(*mCfg, condition);
    stmt.step = step;
    if (step != 1 && step != -1)
        mCfg->mistakes.push_back({fmt::format("step of {} in a counted for, expected 1 or -1", step), loc});
}

void StatementBuilder::endCFor(SourceLoc loc) { close(*mCfg, Stmt::Kind::CFor, loc); }

void StatementBuilder::beginWhile(SourceLoc loc) { openStmt(*mCfg, Stmt::Kind::While, loc); }

void StatementBuilder::whileExpr(Expr condition, SourceLoc loc)
{
    Stmt* const stmt = openedStmt(*mCfg, Stmt::Kind::While, "condition of a while", loc);
    if (stmt == nullptr)
        return;
    if (stmt->condition != nullptr || !stmt->body->stmts.empty())
        mCfg->mistakes.push_back({"condition of a while after its beginning", loc});
    stmt->condition = given(*mCfg, condition);
}

void StatementBuilder::endWhile(SourceLoc loc) { close(*mCfg, Stmt::Kind::While, loc); }

void StatementBuilder::If(Expr condition, SourceLoc loc)
{
    openStmt(*mCfg, Stmt::Kind::If, loc).condition = given(*mCfg, condition);
}

void StatementBuilder::Else(SourceLoc loc)
{
    Stmt* const stmt = openedStmt(*mCfg, Stmt::Kind::If, "else", loc);
    if (stmt == nullptr)
        return;
    if (stmt->elseBody) {
        mCfg->mistakes.push_back({"second else of an if", loc});
        return;
    }
    stmt->elseBody = std::make_unique<Block>();
    mCfg->open.back().block = stmt->elseBody.get();
}

void StatementBuilder::EndIf(SourceLoc loc) { close(*mCfg, Stmt::Kind::If, loc); }
void StatementBuilder::beginScope(SourceLoc loc) { openStmt(*mCfg, Stmt::Kind::Scope, loc); }
void StatementBuilder::endScope(SourceLoc loc) { close(*mCfg, Stmt::Kind::Scope, loc); }

}  // namespace CG
