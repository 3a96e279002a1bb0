// Library functions of the generated code: the facade a function body is written with, and the generator that describes one.
#pragma once

#include "codegen_builder.h"

namespace DSPCG {

class LibGenerator;

/// An index or a count: an int32 expression. A number of the element type, or of its real type.
using IdxVal = CG::Expr;
using NumVal = CG::Expr;

/// Where a library function is placed.
class UtilityFcnScope {
public:
    enum Kind : int { UTILITY = 0 };
    constexpr explicit UtilityFcnScope(Kind kind = UTILITY) noexcept : mKind(kind) {}
    constexpr Kind kind() const noexcept { return mKind; }

private:
    Kind mKind;
};

/// What the host does to a finished function; this host does nothing.
class UtilityFcnPostProcessor;

/// Writes the body of one library function.  [in LibGenerator::constructBody]
class ConstructionFacade : public CG::StatementBuilder {
public:
    // ---- Variables
    /// An int32 local.
    IdxVal localIdxVar(const char* name, const char* use = nullptr, CG::SourceLoc loc = CG::SourceLoc::here());
    NumVal localNumVar(const char* name, const CG::Type* type, const char* use = nullptr,
                       CG::SourceLoc loc = CG::SourceLoc::here());
    /// Input idx of the function, counted from 0: a number, or a pointer to an array of them.
    NumVal getInputNumRef(int idx);
    /// Input idx of the function, counted from 0: an index, or a pointer to an array of them.
    IdxVal getInputIdxRef(int idx);
    /// What a pointer input points to: its element 0.
    NumVal derefToRef(NumVal pointer) { return pointer[0]; }

    // ---- Expressions
    NumVal cast(const CG::Type* type, CG::Expr value) { return castNode(type, value); }
    NumVal multiply(NumVal left, NumVal right) { return left * right; }
    NumVal division(NumVal left, NumVal right) { return left / right; }

    // ---- Calls and comments
    /// Appends a call of a generator's function, which is found or built now.
    ///
    /// @param arguments  as many as the function has inputs, in their order
    void callOutlineNumVal(LibGenerator& generator, const CG::Expr* arguments, int num,
                           CG::SourceLoc loc = CG::SourceLoc::here());
    /// What the function is for, one or two sentences; and the class that describes it.
    void describe(const char* purpose, const char* generator);
    /// What input idx, counted from 0, holds: direction, shape, storage order.
    void describeInput(int idx, const char* text);

private:
    friend class LibGenerator;
    explicit ConstructionFacade(CG::Fcn* fcn) noexcept;

    CG::Fcn* mFcn;
};

/// Describes one library function: name, inputs, body. Lives as long as its function is asked for; the function lives on.
class LibGenerator {
public:
    virtual ~LibGenerator();

    // ---- Placement
    virtual UtilityFcnScope getDefaultUtilityFcnScope() const noexcept;
    virtual void setDefaultUtilityFcnScope(UtilityFcnScope scope) noexcept;
    virtual UtilityFcnScope getUtilityFcnScope() const noexcept;
    virtual UtilityFcnPostProcessor* getUtilityFcnPostProcessor() const noexcept;

    /// Appends the body.
    virtual void constructBody(ConstructionFacade& facade) = 0;

    // ---- Overrides of what the generator says about itself below; this host keeps none
    virtual void setFcnName(const char* name) noexcept;
    virtual void setInput(int idx, const CG::Type* type) noexcept;
    virtual void setInput(int idx, const char* name) noexcept;
    virtual void setOutput(int idx, const CG::Type* type) noexcept;
    virtual void setOutput(int idx, const char* name) noexcept;

    // ---- The function. Inputs and outputs are counted from 0; beyond the last the type is null and the name empty
    virtual const char* fcnName() const = 0;
    virtual int getNumInputs() const = 0;
    virtual const CG::Type* getInputType(int idx) const = 0;
    virtual const char* getInputName(int idx) const = 0;
    virtual int getNumOutputs() const = 0;
    virtual const CG::Type* getOutputType(int idx) const = 0;
    virtual const char* getOutputName(int idx) const = 0;

    void setUtilityFcnScope(UtilityFcnScope scope) noexcept { mScope = scope; }
    /// The function of that name in the scope, built the first time somebody asks.
    CG::Fcn* findOrCreateFcn();

protected:
    /// @param owner  body that is being described when the function is asked for
    explicit LibGenerator(CG::Cfg* owner) noexcept : mOwner(owner) {}
    explicit LibGenerator(ConstructionFacade& owner) noexcept : mOwner(owner.GetCfg()) {}
    LibGenerator(const LibGenerator&) = delete;
    LibGenerator& operator=(const LibGenerator&) = delete;

private:
    CG::Cfg* mOwner;
    UtilityFcnScope mScope{};
};

}  // namespace DSPCG
