// Vectors of one kernel call: the QR factorization and the singular value decomposition.
#include "dspqrfact.h"
#include "svdc.h"
#include "vector_values.h"

namespace {

template <typename T>
void replayQrAs(const Json& vector, CaseCheck& check)
{
    const auto m = vector.at("m").get<std::int32_t>();
    const auto n = vector.at("n").get<std::int32_t>();
    const bool economy = vector.at("economy").get<bool>();
    const auto width = [](std::int32_t rows, std::int32_t cols) { return static_cast<std::size_t>(rows * cols); };
    const std::int32_t q = economy ? std::min(m, n) : m;

    std::vector<T> A = inputValuesAs<T>(vector.at("A"));
    std::vector<T> Q(width(m, q)), R(width(n, n)), E(width(n, 1)), qraux(width(n, 1)), work(width(n, 1));
    std::vector<std::int32_t> jpvt(width(n, 1), 0);
    const QRFactRealInBRealFltSFcnCache<T, T, T> cache;
    qrFactor(cache, m, n, Q.data(), A.data(), E.data(), qraux.data(), work.data(), jpvt.data(), R.data(), economy);

    const Json& expect = vector.at("expect");
    check.knowsAll(expect, {"Q", "R", "A", "E", "jpvt", "qraux", "work"});
    check.reals(expect, "Q", Q.data(), Q.size());
    check.reals(expect, "R", R.data(), R.size());
    check.reals(expect, "A", A.data(), A.size());
    check.reals(expect, "E", E.data(), E.size());
    check.reals(expect, "qraux", qraux.data(), qraux.size());
    check.reals(expect, "work", work.data(), work.size());
    check.exact(expect, "jpvt", jpvt);
}

template <typename T>
void replaySvdAs(const Json& vector, CaseCheck& check)
{
    const auto n = vector.at("n").get<std::int32_t>();
    const auto p = vector.at("p").get<std::int32_t>();
    const bool wantVectors = vector.at("wantVectors").get<bool>();
    const auto width = [](std::int32_t rows, std::int32_t cols) { return static_cast<std::size_t>(rows * cols); };

    std::vector<T> X = inputValuesAs<T>(vector.at("X"));
    std::vector<T> s(width(p, 1)), e(width(p, 1)), work(width(n, 1)), U(width(n, std::min(n, p))), V(width(p, p));
    const std::int32_t status =
        svdc(X.data(), n, p, s.data(), e.data(), work.data(), U.data(), V.data(), wantVectors);

    const Json& expect = vector.at("expect");
    check.knowsAll(expect, {"status", "s", "U", "V"});
    check.exact(expect, "status", status);
    if (status != 0) return;
    check.reals(expect, "s", s.data(), width(std::min(n + 1, p), 1));
    check.reals(expect, "U", U.data(), U.size());
    check.reals(expect, "V", V.data(), V.size());
}

bool isDouble(const Json& vector)
{
    return vector.at("precision") == "double";
}

}  // namespace

void replayQr(const Json& vector, CaseCheck& check)
{
    isDouble(vector) ? replayQrAs<double>(vector, check) : replayQrAs<float>(vector, check);
}

void replaySvd(const Json& vector, CaseCheck& check)
{
    isDouble(vector) ? replaySvdAs<double>(vector, check) : replaySvdAs<float>(vector, check);
}
