// Vectors of one call of the generated QR factorization.
#include "qr_functions.h"
#include "vector_values.h"

namespace {

template <typename T>
void replayAs(const Json& vector, CaseCheck& check)
{
    codegentest::QreArrays<T> arrays(inputValuesAs<T>(vector.at("A")), vector.at("m"), vector.at("n"), vector.at("economy"),
                                     T(0));
    arrays.factor();
    const Json& expect = vector.at("expect");
    check.knowsAll(expect, {"Q", "R", "A", "E", "jpvt", "qraux", "work"});
    check.reals(expect, "Q", arrays.Q.data(), arrays.Q.size());
    check.reals(expect, "R", arrays.R.data(), arrays.R.size());
    check.reals(expect, "A", arrays.A.data(), arrays.A.size());
    check.reals(expect, "E", arrays.E.data(), arrays.E.size());
    check.reals(expect, "qraux", arrays.qraux.data(), arrays.qraux.size());
    check.reals(expect, "work", arrays.work.data(), arrays.work.size());
    check.exact(expect, "jpvt", arrays.jpvt);
}

}  // namespace

void replayGeneratedQr(const Json& vector, CaseCheck& check)
{
    vector.at("precision") == "double" ? replayAs<double>(vector, check) : replayAs<float>(vector, check);
}
