// StatementBuilder: appends variables and statements to one function body; and blocks that close themselves.
#pragma once

#include "codegen_nodes.h"

namespace CG {

/// What the context of a block and the facade of a function generator have in common. Each operation takes the line of the
/// generator that calls it.  [while a block describes itself; host thread]
class StatementBuilder {
public:
    // ---- Variables: known from here to the end of the innermost open block. A name may repeat; the host keeps such apart

    /// @param typeId  data-type id
    /// @param width   0: a scalar, else an array of that many elements
    /// @param use     what it is for, as a comment; null: none
    Expr createLocal(const char* name, int typeId, int width = 0, const char* use = nullptr,
                     SourceLoc loc = SourceLoc::here());
    Expr createLocal(const char* name, const Type* type, int width = 0, const char* use = nullptr,
                     SourceLoc loc = SourceLoc::here());

    // ---- Expressions

    /// A constant, converted to the type.
    Expr getConstScalar(const Type* type, double value);
    Expr castNode(const Type* type, Expr value) { return cg_node_create_cast(type, value.node()); }
    Expr getIndexedVar(Expr array, Expr idx) { return array[idx]; }

    // ---- Statements

    void Assign(Expr target, Expr value, SourceLoc loc = SourceLoc::here());
    /// The constant is converted to the target's type.
    void Assign(Expr target, double value, SourceLoc loc = SourceLoc::here());
    /// A call whose result nobody takes.
    void AppendStatement(Node* call, SourceLoc loc = SourceLoc::here());
    /// A comment line.
    void append(const char* comment, SourceLoc loc = SourceLoc::here());
    void increment(Expr variable, SourceLoc loc = SourceLoc::here());
    void decrement(Expr variable, SourceLoc loc = SourceLoc::here());

    // ---- Blocks

    /// counter = 0; while it is below the bound: the body, then counter + 1. The body may change the counter.
    void beginFor(Expr counter, Expr bound, SourceLoc loc = SourceLoc::here());
    void endFor(SourceLoc loc = SourceLoc::here());
    /// counter = first; while the condition holds: the body, then counter + step. The step is 1 or -1.
    void beginCFor(Expr counter, Expr first, Expr condition, int step, SourceLoc loc = SourceLoc::here());
    void endCFor(SourceLoc loc = SourceLoc::here());
    void beginWhile(SourceLoc loc = SourceLoc::here());
    void whileExpr(Expr condition, SourceLoc loc = SourceLoc::here());
    void endWhile(SourceLoc loc = SourceLoc::here());
    void If(Expr condition, SourceLoc loc = SourceLoc::here());
    void Else(SourceLoc loc = SourceLoc::here());
    void EndIf(SourceLoc loc = SourceLoc::here());
    void beginIf(Expr condition, SourceLoc loc = SourceLoc::here()) { If(condition, loc); }
    void endIf(SourceLoc loc = SourceLoc::here()) { EndIf(loc); }
    /// A block that only limits where variables are known.
    void beginScope(SourceLoc loc = SourceLoc::here());
    void endScope(SourceLoc loc = SourceLoc::here());

    /// The body that statements are appended to.
    Cfg* GetCfg() const noexcept { return mCfg; }

protected:
    explicit StatementBuilder(Cfg* cfg) noexcept : mCfg(cfg) {}
    ~StatementBuilder() = default;

    Cfg* mCfg;
};

// ---- Blocks that close themselves at the end of the generator's own block

class ForBlock {
public:
    ForBlock(StatementBuilder& builder, Expr counter, Expr bound, SourceLoc loc = SourceLoc::here()) : mBuilder(builder)
    {
        mBuilder.beginFor(counter, bound, loc);
    }
    ForBlock(StatementBuilder& builder, Expr counter, int bound, SourceLoc loc = SourceLoc::here())
        : ForBlock(builder, counter, Expr(cg_node_create_const_like(counter.node(), bound)), loc)
    {
    }
    ~ForBlock() { mBuilder.endFor(); }
    ForBlock(const ForBlock&) = delete;
    ForBlock& operator=(const ForBlock&) = delete;

private:
    StatementBuilder& mBuilder;
};

class CForBlock {
public:
    CForBlock(StatementBuilder& builder, Expr counter, Expr first, Expr condition, int step = 1,
              SourceLoc loc = SourceLoc::here())
        : mBuilder(builder)
    {
        mBuilder.beginCFor(counter, first, condition, step, loc);
    }
    ~CForBlock() { mBuilder.endCFor(); }
    CForBlock(const CForBlock&) = delete;
    CForBlock& operator=(const CForBlock&) = delete;

private:
    StatementBuilder& mBuilder;
};

class WhileBlock {
public:
    WhileBlock(StatementBuilder& builder, Expr condition, SourceLoc loc = SourceLoc::here()) : mBuilder(builder)
    {
        mBuilder.beginWhile(loc);
        mBuilder.whileExpr(condition, loc);
    }
    ~WhileBlock() { mBuilder.endWhile(); }
    WhileBlock(const WhileBlock&) = delete;
    WhileBlock& operator=(const WhileBlock&) = delete;

private:
    StatementBuilder& mBuilder;
};

class IfBlock {
public:
    IfBlock(StatementBuilder& builder, Expr condition, SourceLoc loc = SourceLoc::here()) : mBuilder(builder)
    {
        mBuilder.If(condition, loc);
    }
    ~IfBlock() { mBuilder.EndIf(); }
    IfBlock(const IfBlock&) = delete;
    IfBlock& operator=(const IfBlock&) = delete;

    void otherwise(SourceLoc loc = SourceLoc::here()) { mBuilder.Else(loc); }

private:
    StatementBuilder& mBuilder;
};

class ScopeBlock {
public:
    explicit ScopeBlock(StatementBuilder& builder, SourceLoc loc = SourceLoc::here()) : mBuilder(builder)
    {
        mBuilder.beginScope(loc);
    }
    ~ScopeBlock() { mBuilder.endScope(); }
    ScopeBlock(const ScopeBlock&) = delete;
    ScopeBlock& operator=(const ScopeBlock&) = delete;

private:
    StatementBuilder& mBuilder;
};

}  // namespace CG
