// VektCGCtx: the context in which a block describes its code, phase by phase.
#pragma once

#include "codegen_block_if.h"
#include "codegen_builder.h"

/// Rounding of fixed-point arithmetic. A block of floating-point arithmetic only passes one on.
enum fxpModeRounding_tag : int { FXP_ROUND_CEILING = 0, FXP_ROUND_NEAREST = 1, FXP_ROUND_FLOOR = 2, FXP_ROUND_ZERO = 3 };
/// Overflow of fixed-point arithmetic.
enum fxpModeOverflow_tag : int { FXP_OVERFLOW_WRAP = 0, FXP_OVERFLOW_SATURATE = 1 };

namespace VektCG {

/// Base of a block's code-generation context. constructCode calls the operations of the declared phases in the order of
/// their slots; each appends to the phase's body. Locals created before belong to the output phase.
/// [in mdlVektCG; host thread]
class VektCGCtx : public CG::StatementBuilder {
public:
    VektCGCtx(CGIR_Block_IF* blockInterface, fxpModeRounding_tag rounding, fxpModeOverflow_tag overflow);
    VektCGCtx(const VektCGCtx&) = delete;
    VektCGCtx& operator=(const VektCGCtx&) = delete;

    // ---- Phases: a block overrides those that it emits
    virtual void start();
    virtual void virtualOutportStart();
    virtual void initialize();
    virtual void output();
    virtual void update();
    virtual void derivative();
    virtual void projection();
    virtual void forcingFunction();
    virtual void massMatrix();
    virtual void zerocrossings();
    virtual void enable();
    virtual void disable();
    virtual void setAllDims();
    virtual void setDims();
    virtual void terminate();
    virtual void testInterface();

    virtual ~VektCGCtx();

    /// Sets the flags of the phases that the block emits.
    virtual void declarePhases() = 0;

    // ---- Functions of the target's own library
    /// A call of "rand", "pow", "log" or "ceil"; another name is a fault of the block.
    virtual CG::Node* getTargetLibFcnCallCGNode(const char* name, const CG::Type* type);
    /// The same; null for another name.
    virtual CG::Node* getTargetLibFcnCallCGNodeIfExist(const char* name, const CG::Type* type);

    /// Runs the declared phases of the context.
    void constructCode();

    CGIR_Block_IF* getBlockInterface() const noexcept { return mBlockInterface; }
    fxpModeRounding_tag getRoundingMode() const noexcept { return mRounding; }
    fxpModeOverflow_tag getOverflowMode() const noexcept { return mOverflow; }

protected:
    static constexpr int PHASE_NUM = 16;

    /// @param type  floating-point type of arguments and result; for "rand" the integer type of the result
    CG::Node* getTargetLibFcnCall(const char* name, const CG::Type* type) { return getTargetLibFcnCallCGNode(name, type); }
    /// Argument idx of such a call, counted from 1.
    void setTargetFcnInputData(CG::Node* call, int idx, CG::Expr argument) { cg_node_set_in_data(call, idx, argument.node()); }

    /// One flag per phase, in the order of their slots.
    bool mIsPhaseEmitted[PHASE_NUM] = {};

private:
    CGIR_Block_IF* mBlockInterface;
    fxpModeRounding_tag mRounding;
    fxpModeOverflow_tag mOverflow;
};

}  // namespace VektCG
