// Trees described by hand: functions and phases whose bodies a test writes through the host's interface.
#pragma once

#include "ir/block_interface.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tree {

/// A library function whose inputs and body the test gives.
class Function : public DSPCG::LibGenerator {
public:
    using Inputs = std::vector<std::pair<const char*, const CG::Type*>>;
    using Body = std::function<void(DSPCG::ConstructionFacade&)>;

    Function(CG::Cfg& owner, const char* name, Inputs inputs, Body body)
        : LibGenerator(&owner), mName(name), mInputs(std::move(inputs)), mBody(std::move(body))
    {
    }
    void constructBody(DSPCG::ConstructionFacade& f) override { mBody(f); }
    const char* fcnName() const override { return mName; }
    int getNumInputs() const override { return static_cast<int>(mInputs.size()); }
    const CG::Type* getInputType(int idx) const override { return mInputs[static_cast<std::size_t>(idx)].second; }
    const char* getInputName(int idx) const override { return mInputs[static_cast<std::size_t>(idx)].first; }
    int getNumOutputs() const override { return 0; }
    const CG::Type* getOutputType(int) const override { return nullptr; }
    const char* getOutputName(int) const override { return ""; }

private:
    const char* mName;
    Inputs mInputs;
    Body mBody;
};

/// Appends to one body.
class Builder : public CG::StatementBuilder {
public:
    explicit Builder(CG::Cfg& cfg) : StatementBuilder(&cfg) {}
};

/// A variable as an expression: an array when it has a width.
inline CG::Expr use(CG::Module& module, CG::Var* var)
{
    CG::Node* const node = module.newNode(CG::Node::Kind::Variable,
                                          var->width > 0 ? CG::staticUnknownMatrixT(var->type) : var->type);
    node->var = var;
    return node;
}

/// The value of a function of the target's library.
inline CG::Expr targetCall(CG::Module& module, const char* name, const CG::Type* type, std::vector<CG::Node*> arguments)
{
    CG::Node* const call = module.newNode(CG::Node::Kind::Call, type);
    call->callee = CG::Node::Callee::Target;
    call->name = name;
    call->in = std::move(arguments);
    return call;
}

inline const CG::Type* arrayOf(const CG::Type* element) { return CG::pointerT(CG::staticUnknownMatrixT(element)); }
inline const CG::Type* readOnlyArrayOf(const CG::Type* element)
{
    return CG::pointerT(CG::readOnlyT(CG::staticUnknownMatrixT(element)));
}

}  // namespace tree
