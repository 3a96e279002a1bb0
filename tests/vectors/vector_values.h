// Comparison with vector files: exact, field by field, with the list of what differs.
// Expected values come as decimal and as exact hexadecimal text.
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "json_numbers.h"

template <typename T>
std::vector<T> inputValuesAs(const Json& values)
{
    std::vector<T> result;
    for (const double value : inputValues(values)) result.push_back(static_cast<T>(value));
    return result;
}

/// The comparison of one case: remembers the first difference of each field.
class CaseCheck {
public:
    explicit CaseCheck(std::string name) : mName(std::move(name)) {}

    /// An expected real scalar or list of them ("hex") against what was computed: equal values, NaN equal to NaN.
    /// A missing field is not compared.
    template <typename T>
    void reals(const Json& expect, const char* field, const T* got, std::size_t num)
    {
        std::vector<double> widened(got, got + num);
        compareReals(expect, field, widened);
    }
    template <typename T>
    void real(const Json& expect, const char* field, T got)
    {
        reals(expect, field, &got, 1);
    }
    /// An expected integer, Boolean, text or list of integers; null and missing fields are not compared.
    void exact(const Json& expect, const char* field, const Json& got);
    /// Every field of expect must be one of these: a field that nobody compares is a difference.
    void knowsAll(const Json& expect, std::initializer_list<const char*> fields);
    void fail(const std::string& text) { mDifferences.push_back(mName + ": " + text); }
    /// Later differences are reported for this step of the case.
    void setStep(std::size_t step) { mStep = "step " + std::to_string(step) + ": "; }

    const std::vector<std::string>& differences() const { return mDifferences; }

private:
    void compareReals(const Json& expect, const char* field, const std::vector<double>& got);

    std::string mName;
    std::string mStep;
    std::vector<std::string> mDifferences;
};

// ---- One function per format: replays a case and fills the check

void replayQr(const Json& vector, CaseCheck& check);
void replaySvd(const Json& vector, CaseCheck& check);
void replayFit(const Json& vector, CaseCheck& check);
void replayStep(const Json& vector, CaseCheck& check);
void replayGeneratedQr(const Json& vector, CaseCheck& check);
