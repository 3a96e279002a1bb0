// QR work caches: the scalar operations on matrix elements, as a polymorphic object that a block creates at start.
// The kernel sees the final class, so that each operation is one virtual call in the source and none in the machine code.
#pragma once

#include <cmath>
#include <cstdint>

#include "block_ports.h"
#include "block_run.h"

/// Base of a block's work caches. The virtual operations of the whole family stand in slot order.
class DSPSFcnCache {
public:
    virtual ~DSPSFcnCache() = default;
    /// Runs the worker routine that the cache is bound to.
    virtual void compute() = 0;
    /// Does nothing; nothing calls it.
    virtual void unused() {}

protected:
    DSPSFcnCache() = default;
    DSPSFcnCache(const DSPSFcnCache&) = default;
    DSPSFcnCache& operator=(const DSPSFcnCache&) = default;
};

/// QR cache of one element type: what a block's construction records, and the scalar operations as pure ones.
///
/// Operations on matrix elements ("A") have plain names; those on vector elements ("B") carry a B. A derived class may
/// give the two different types (real, complex); here all three type parameters are equal.
///
/// @tparam T   matrix element, TB vector element, TR real type of both
template <typename T, typename TB, typename TR>
class QRFactFltSFcnCache : public DSPSFcnCache {
public:
    using Worker = void (*)(QRFactFltSFcnCache& cache);

    /// Calls the bound worker; a cache without one returns at once.
    void compute() override
    {
        if (worker != nullptr) worker(*this);
    }

    virtual void setZero(T* p) const = 0;                    ///< *p := 0
    virtual void setOne(T* p) const = 0;                     ///< *p := 1
    virtual TR absTest(T x) const = 0;                       ///< |x| in tests against zero
    virtual TR absValue(T x) const = 0;                      ///< |x| in ratios
    virtual T mulSub(T a, T b, T c) const = 0;               ///< a - b*c
    virtual TB mulSubB(TB a, T b, TB c) const = 0;           ///< a - b*c
    virtual T mul(T a, T b) const = 0;                       ///< a*b
    virtual T div(T a, T b) const = 0;                       ///< a/b
    virtual TB divB(TB a, T b) const = 0;                    ///< a/b
    virtual T recip(T x) const = 0;                          ///< 1/x
    virtual T mulAdd(T a, T b, T c) const = 0;               ///< a + b*c
    virtual TR hypot(T a, TR b) const = 0;                   ///< sqrt(a^2 + b^2) without overflow
    virtual void setRe(T* p, TR v) const = 0;                ///< Re(*p) := v
    virtual void setReB(TB* p, TR v) const = 0;              ///< Re(*p) := v
    virtual void setIm(T* p, TR v) const = 0;                ///< Im(*p) := v
    virtual void setImB(TB* p, TR v) const = 0;              ///< Im(*p) := v
    virtual TR re(T x) const = 0;                            ///< Re(x)
    virtual TR im(T x) const = 0;                            ///< Im(x)
    virtual void storeRe(TR v, T* p) const = 0;              ///< Re(*p) := v, value first
    virtual bool isNonZero(T x) const = 0;                   ///< x != 0; true for a NaN
    virtual void incOne(T* p) const = 0;                     ///< *p := *p + 1
    virtual T mulRe(T a, TR v) const = 0;                    ///< a*v
    virtual void setReC(T* p, TR v) const = 0;               ///< Re(*p) := v
    virtual void setZeroB(TB* p) const = 0;                  ///< *p := 0
    virtual TB mulAddB(TB a, TB b, T c) const = 0;           ///< a + b*c
    virtual TR reB(TB x) const = 0;                          ///< Re(x)
    virtual TR imB(TB x) const = 0;                          ///< Im(x)

    // Recorded at construction. Only zero and one are read by the kernel, which gets sizes and arrays as arguments.
    std::int32_t rows = 0;
    std::int32_t cols = 0;
    T* input = nullptr;
    T* work0 = nullptr;
    T* work1 = nullptr;
    T zero = T(0);
    T one = T(1);
    Worker worker = nullptr;

protected:
    /// A cache outside of a block: the constants and nothing else.
    QRFactFltSFcnCache() = default;

    /// Records the first input port and the first two work vectors.  [in mdlStart; host thread]
    ///
    /// @param S          block instance
    /// @param solveMode  false: the cache serves factorizations. Solving is not offered, so nothing depends on it,
    ///                   and no worker is bound: the engine calls the kernel directly.
    /// @param value      the value of one
    QRFactFltSFcnCache(sysobj::SysObjAdaptorSFun* S, bool solveMode, T value)
        : rows(sysobj::bhGetInputPortDimensionSize(S, 0, 0)),
          cols(sysobj::bhGetInputPortNumDimensions(S, 0) > 1 ? sysobj::bhGetInputPortDimensionSize(S, 0, 1) : 1),
          input(static_cast<T*>(const_cast<void*>(sysobj::bhGetInputPortSignal(S, 0)))),
          work0(static_cast<T*>(sysobj::bhGetDWork(S, 0))),
          work1(static_cast<T*>(sysobj::bhGetDWork(S, 1))),
          one(value)
    {
        static_cast<void>(solveMode);
    }
};

/// The operations on matrix elements for real T.
template <typename T, typename TB, typename TR>
class QRFactRealFltSFcnCache : public QRFactFltSFcnCache<T, TB, TR> {
public:
    void setZero(T* p) const override { *p = this->zero; }
    void setOne(T* p) const override { *p = this->one; }
    TR absTest(T x) const override { return std::abs(x); }
    TR absValue(T x) const override { return std::abs(x); }
    T mulSub(T a, T b, T c) const override { return a - b * c; }
    T mul(T a, T b) const override { return a * b; }
    T div(T a, T b) const override { return a / b; }
    T recip(T x) const override { return this->one / x; }
    T mulAdd(T a, T b, T c) const override { return a + b * c; }
    TR hypot(T a, TR b) const override
    {
        const TR absA = std::abs(a);
        const TR absB = std::abs(b);
        const bool isFirstLarger = absA > absB;
        const TR larger = isFirstLarger ? absA : absB;
        const TR smaller = isFirstLarger ? absB : absA;
        if (larger == TR(0)) return TR(0);               // also for a NaN beside a zero, which compares as not larger
        const TR ratio = smaller / larger;
        return larger * std::sqrt(TR(1) + ratio * ratio);
    }
    void setRe(T* p, TR v) const override { *p = v; }
    void setIm(T*, TR) const override {}
    TR re(T x) const override { return x; }
    TR im(T) const override { return this->zero; }
    void storeRe(TR v, T* p) const override { *p = v; }
    bool isNonZero(T x) const override { return x != this->zero; }
    void incOne(T* p) const override { *p = *p + this->one; }
    T mulRe(T a, TR v) const override { return a * v; }
    void setReC(T* p, TR v) const override { *p = v; }

protected:
    using QRFactFltSFcnCache<T, TB, TR>::QRFactFltSFcnCache;
};

/// The cache of real matrices and real vectors: every B operation is its A twin. This is the class that a block creates.
template <typename T, typename TB, typename TR>
class QRFactRealInBRealFltSFcnCache final : public QRFactRealFltSFcnCache<T, TB, TR> {
public:
    /// A cache outside of a block.
    QRFactRealInBRealFltSFcnCache() = default;
    /// The cache of a block instance.  [in mdlStart; host thread]
    QRFactRealInBRealFltSFcnCache(sysobj::SysObjAdaptorSFun* S, bool solveMode, T value)
        : QRFactRealFltSFcnCache<T, TB, TR>(S, solveMode, value)
    {
    }

    TB mulSubB(TB a, T b, TB c) const override { return this->mulSub(a, b, c); }
    TB divB(TB a, T b) const override { return this->div(a, b); }
    void setReB(TB* p, TR v) const override { this->setRe(p, v); }
    void setImB(TB* p, TR v) const override { this->setIm(p, v); }
    void setZeroB(TB* p) const override { this->setZero(p); }
    TB mulAddB(TB a, TB b, T c) const override { return this->mulAdd(a, b, c); }
    TR reB(TB x) const override { return this->re(x); }
    TR imB(TB x) const override { return this->im(x); }
};
