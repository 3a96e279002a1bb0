// Generators of the QR family of the generated code: each class describes one utility function, the counterpart of a kernel
// of dspqrfact_kernel.h. All write through pointer inputs, none gives a result.
#pragma once

#include <string>

#include "codegen_generators.h"

/// What the generators have in common: element type, real or complex form, and that there is no output.
class QRFactBaseClass : public DSPCG::LibGenerator {
public:
    /// @param owner     body that is being described
    /// @param elemType  double or single, real or complex; also a matrix of them
    /// @param isReal    whether elemType is real: selects the form of the body
    QRFactBaseClass(CG::Cfg* owner, const CG::Type* elemType, bool isReal);
    /// The same for a function that another generator's body calls.
    QRFactBaseClass(DSPCG::ConstructionFacade& owner, const CG::Type* elemType, bool isReal);

    int getNumOutputs() const override { return 0; }
    const CG::Type* getOutputType(int) const override { return nullptr; }
    const char* getOutputName(int) const override { return "noOutput"; }

protected:
    const CG::Type* elemType;
    bool isReal;
    const CG::Type* realType;  ///< single or double, whichever elemType consists of

    /// "base_" + complex marker + name of the real type; valid until the next call.
    const char* typedFcnName(const char* base, const char* marker) const;

private:
    mutable std::string mFcnName;
};

/// QRE: the factorization A*E = Q*R with explicit factors; the generated qrFactor.
class QRFactQREGen : public QRFactBaseClass {
public:
    using QRFactBaseClass::QRFactBaseClass;
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
};

/// QRDC: Householder reduction with column pivoting, in place; the generated qrdc.
///
/// nrmxl is given the sign of x(l,l) exactly, where the kernel scales x(l,l): results may differ in the last bit.
/// Columns marked on entry are moved to the front (jpvt > 0) or to the back (jpvt < 0) and stay there.
class QRFactQRDCGen : public QRFactBaseClass {
public:
    using QRFactBaseClass::QRFactBaseClass;
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
};

/// QRV2Norm: 2-norm of a vector by running hypot.
///
/// The kernel's to the bit, but for a NaN: it is lost here when a zero follows, there when the norm before it is zero.
class QRFactV2normGen : public QRFactBaseClass {
public:
    using QRFactBaseClass::QRFactBaseClass;
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
};

/// QRSL1: y := Q*y, all transformations; the generated qrCompQy.
class QRFactQRSL1Gen : public QRFactBaseClass {
public:
    using QRFactBaseClass::QRFactBaseClass;
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;
};

/// QRCompQy: y := H*y for one Householder transformation. A complex factorization needs a complex y.
class QRFactCompQyGen : public QRFactBaseClass {
public:
    /// @param elemType, isReal  of y
    /// @param qrType, qrIsReal  of the factored matrix
    QRFactCompQyGen(CG::Cfg* owner, const CG::Type* elemType, bool isReal, const CG::Type* qrType, bool qrIsReal);
    QRFactCompQyGen(DSPCG::ConstructionFacade& owner, const CG::Type* elemType, bool isReal, const CG::Type* qrType,
                    bool qrIsReal);
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;

private:
    const CG::Type* qrType;
    bool qrIsReal;
};

/// QRSL2: b := Q'*b, then the least-squares solution of A*x = b in place over b.
///
/// Method: LINPACK's xQRSL for the jobs Q'*b and x. Back substitution stops at a zero on the diagonal of R.
class QRFactQRSL2Gen : public QRFactBaseClass {
public:
    /// @param elemType, isReal  of b
    /// @param qrType, qrIsReal  of the factored matrix
    QRFactQRSL2Gen(CG::Cfg* owner, const CG::Type* elemType, bool isReal, const CG::Type* qrType, bool qrIsReal);
    QRFactQRSL2Gen(DSPCG::ConstructionFacade& owner, const CG::Type* elemType, bool isReal, const CG::Type* qrType,
                   bool qrIsReal);
    void constructBody(DSPCG::ConstructionFacade& f) override;
    const char* fcnName() const override;
    int getNumInputs() const override;
    const CG::Type* getInputType(int idx) const override;
    const char* getInputName(int idx) const override;

private:
    const CG::Type* qrType;
    bool qrIsReal;
};
