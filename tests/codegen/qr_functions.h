// The generated QR functions under one name for every element type, compiled from the files that qr_functions_writer wrote.
#pragma once

#include "qr_cdouble.h"
#include "qr_csingle.h"
#include "qr_double.h"
#include "qr_single.h"

#include <algorithm>
#include <complex>
#include <cstdint>
#include <vector>

namespace codegentest {

template <typename T>
struct Element {
    using Raw = T;
    using Real = T;
};
template <>
struct Element<std::complex<double>> {
    using Raw = complexD;
    using Real = double;
};
template <>
struct Element<std::complex<float>> {
    using Raw = complexR;
    using Real = float;
};

/// Inputs as dspqrfact_gen.h describes the functions.
template <typename T>
struct QrFunctions {
    using Raw = typename Element<T>::Raw;
    using Real = typename Element<T>::Real;
    void (*norm)(Raw* v, std::int32_t n, Real* norm);
    void (*compQy)(Raw* qr, Raw* qrAuxj, Raw* y, std::int32_t n, std::int32_t j);
    void (*sl1)(Raw* qr, Raw* qrAux, Raw* y, std::int32_t n, std::int32_t k);
    void (*sl2)(Raw* qr, Raw* qrAux, Raw* b, std::int32_t n, std::int32_t k);
    void (*qre)(Raw* Q, Raw* A, Real* E, Raw* qrAux, Raw* work, std::int32_t* jpvt, Raw* R, std::int32_t m, std::int32_t n,
                bool economy);
};

template <typename T>
inline constexpr QrFunctions<T> GENERATED{};
template <>
inline constexpr QrFunctions<double> GENERATED<double>{qr_double_QRV2Norm_double, qr_double_QRCompQy_double,
                                                       qr_double_QRSL1_double, qr_double_QRSL2_double,
                                                       qr_double_QRE_double};
template <>
inline constexpr QrFunctions<float> GENERATED<float>{qr_single_QRV2Norm_single, qr_single_QRCompQy_single,
                                                     qr_single_QRSL1_single, qr_single_QRSL2_single,
                                                     qr_single_QRE_single};
template <>
inline constexpr QrFunctions<std::complex<double>> GENERATED<std::complex<double>>{
    qr_cdouble_QRV2Norm_Cdouble, qr_cdouble_QRCompQy_CinCoutdouble, qr_cdouble_QRSL1_Cdouble,
    qr_cdouble_QRSL2_CinCoutdouble, qr_cdouble_QRE_Cdouble};
template <>
inline constexpr QrFunctions<std::complex<float>> GENERATED<std::complex<float>>{
    qr_csingle_QRV2Norm_Csingle, qr_csingle_QRCompQy_CinCoutsingle, qr_csingle_QRSL1_Csingle,
    qr_csingle_QRSL2_CinCoutsingle, qr_csingle_QRE_Csingle};

template <typename T>
typename Element<T>::Raw* raw(std::vector<T>& values, std::size_t first = 0)
{
    return reinterpret_cast<typename Element<T>::Raw*>(values.data() + first);
}

/// Arrays of a call of QRE, in/out where the function says so.
template <typename T>
struct QreArrays {
    std::int32_t m, n, q;
    bool isEconomy;
    std::vector<T> Q, A, R, qraux, work;
    std::vector<typename Element<T>::Real> E;
    std::vector<std::int32_t> jpvt;

    /// R begins as untouched everywhere.
    QreArrays(std::vector<T> matrix, std::int32_t rowNum, std::int32_t colNum, bool economy, T untouched)
        : m(rowNum), n(colNum), q(economy ? std::min(m, n) : m), isEconomy(economy), Q(std::size_t(m * q)),
          A(std::move(matrix)), R(std::size_t(n * n), untouched), qraux(std::size_t(n)), work(qraux), E(std::size_t(n)),
          jpvt(std::size_t(n), 0)
    {
    }

    void factor()
    {
        GENERATED<T>.qre(raw(Q), raw(A), E.data(), raw(qraux), raw(work), jpvt.data(), raw(R), m, n, isEconomy);
    }
    const std::vector<T>& triangle() const { return isEconomy && m > n ? R : A; }
};

}  // namespace codegentest
