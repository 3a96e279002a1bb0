// Statements of the tree as lines of C.
#pragma once

#include "unit.h"
#include "usage.h"

namespace blockhost::c99 {

/// How a body leaves its function, and where it finds the sizes that it sets.
struct StepText {
    std::string clearCall;                     ///< statement that clears the outputs; empty: there are none
    std::string errorReturn;                   ///< statement that ends the step with an error
    std::vector<std::string> outputSizeNames;  ///< by output port; of a fixed-size port empty
};

class StatementWriter {
public:
    /// @param usage  of all the bodies that are written
    /// @param step   null outside a step: no statement needs it there
    StatementWriter(Lines& lines, Unit& unit, const BodyUsage& usage, const StepText* step = nullptr)
        : mLines(lines), mUnit(unit), mUsage(usage), mStep(step)
    {
    }

    /// Declares the locals of a block, then writes its statements.
    ///
    /// @param scope  C scope that is open
    void block(const CG::Block& block, NameScope& scope);
    /// The locals alone, and the statements alone, for bodies that share one C block.
    bool locals(const CG::Block& block, NameScope& scope);
    void statements(const CG::Block& block, NameScope& scope);
    /// The step's early end.
    void sizeError();

private:
    void statement(const CG::Stmt& stmt, NameScope& scope);
    void nested(const CG::Block& block, const NameScope& around);
    void ifStatement(const CG::Stmt& stmt, NameScope& scope);
    void local(const CG::Var* var, const CG::Block& block, NameScope& scope);
    bool hasLocals(const CG::Block& block) const;
    std::string forHead(const CG::Stmt& stmt);
    std::string text(const CG::Node* node);

    Lines& mLines;
    Unit& mUnit;
    const BodyUsage& mUsage;
    const StepText* mStep;
};

}  // namespace blockhost::c99
