// Operations on matrix elements as the bodies of the generated QR functions write them: each appends its real or its complex
// form, by the types of the operands. The real forms are single expressions in the order that is written here.
#pragma once

#include <initializer_list>

#include "codegen_generators.h"

namespace qrdetail {

class ElementOps {
public:
    /// @param type  real type of the elements
    ElementOps(DSPCG::ConstructionFacade& facade, const CG::Type* type) : f(facade), realType(type) {}

    // ---- Expressions
    /// Real part; of a real number itself.
    static CG::Expr re(CG::Expr x);
    CG::Expr abs(CG::Expr x) const;
    CG::Expr sqrt(CG::Expr x) const;
    /// Magnitude in tests against zero: |x|, complex |Re x| + |Im x|.
    CG::Expr magnitude(CG::Expr x) const;
    static CG::Expr isNonZero(CG::Expr x);

    // ---- Real results
    /// sqrt(a^2 + b^2) without overflow for real a and b, in a local of the innermost block.
    CG::Expr hypot(CG::Expr a, CG::Expr b) const;
    /// Magnitude in ratios: |x|; complex: the modulus, which is kept in store.
    CG::Expr modulus(CG::Expr x, CG::Expr store) const;

    // ---- Statements
    /// x := value, which is real; also the imaginary part of a complex x when it is not 0.
    void setReal(CG::Expr x, CG::Expr value) const;
    /// Re(x) := value and Im(x) := zero, a real number that is 0.
    void setReal(CG::Expr x, CG::Expr value, CG::Expr zero) const;
    /// product := a*b; product may be a.
    void mul(CG::Expr product, CG::Expr a, CG::Expr b) const;
    /// product := a*factor for a real factor.
    void mulRe(CG::Expr product, CG::Expr a, CG::Expr factor) const;
    /// quotient := a/b, complex by Smith's method; quotient may be a.
    void div(CG::Expr quotient, CG::Expr a, CG::Expr b) const;
    /// reciprocal := 1/x
    void recip(CG::Expr reciprocal, CG::Expr x) const;
    /// sum := sum - conj(a)*b
    void mulSub(CG::Expr sum, CG::Expr a, CG::Expr b) const;
    /// sum := sum + a*b
    void mulAdd(CG::Expr sum, CG::Expr a, CG::Expr b) const;
    /// x := x + 1
    void addOne(CG::Expr x) const;
    /// negative := -x
    void negate(CG::Expr negative, CG::Expr x) const;

    /// A call of a generator's function.
    void call(DSPCG::LibGenerator& generator, std::initializer_list<CG::Expr> arguments,
              CG::SourceLoc loc = CG::SourceLoc::here()) const;

private:
    DSPCG::ConstructionFacade& f;
    const CG::Type* realType;
};

/// Whether the form of an operand is the complex one.
bool isComplexExpr(CG::Expr x);

}  // namespace qrdetail
