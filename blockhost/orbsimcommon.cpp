#include "data_types.h"
#include "host_call.h"
#include "message_catalog.h"

#include <fmt/format.h>

#include <cmath>

using namespace blockhost;

namespace {

/// Value of a dialog parameter; a fault and 0 when it does not exist.
double paramValue(sysobj::SysObjAdaptorSFun* S, int idx, const char* function)
{
    if (idx >= 0 && static_cast<std::size_t>(idx) < S->params.size())
        return S->params[static_cast<std::size_t>(idx)].value;
    S->recordFault(fmt::format("{}: parameter {} does not exist; the block has {}", function, idx, S->params.size()));
    return 0.0;
}

/// False, after the report "name: got value, expected what".
bool reportParam(sysobj::SysObjAdaptorSFun* S, const char* id, int idx, double value, const std::string& expected)
{
    S->report(id, fmt::format("{}: got {}, expected {}", S->paramName(idx), value, expected));
    return false;
}

/// True for a finite number without fraction; NaN and the infinities are none.
bool isWhole(double value) noexcept
{
    return std::isfinite(value) && std::trunc(value) == value;
}

/// The data types of a mask: "double, single".
std::string typeNames(std::uint32_t typeMask)
{
    std::string names;
    for (int typeId = 0; isDataType(typeId); ++typeId)
        if ((typeMask & (1U << typeId)) != 0)
            names += (names.empty() ? "" : ", ") + std::string(typeName(typeId));
    return names;
}

/// A call of a checker's set-up shows in the trace of the running instance.
void traceSetUp(const char* function, int value) noexcept
{
    if (sysobj::SysObjAdaptorSFun* const S = runningInstance())
        hostCall(
            S, function, ANY_CALLBACK, [] {}, value);
}

void traceBound(const char* function, int bound, double realBound) noexcept
{
    if (sysobj::SysObjAdaptorSFun* const S = runningInstance())
        hostCall(
            S, function, ANY_CALLBACK, [] {}, bound, realBound);
}

}  // namespace

namespace OrbSimCommon {

void dspError(SysObjAdaptorSFun* S, const resource_core::BaseMsgID& message) noexcept
{
    hostCall(
        S, "dspError", ANY_CALLBACK, [&] { S->report(message.id(), messageText(message)); }, message);
}

void dspWarning(const resource_core::BaseMsgID& message) noexcept
{
    if (SysObjAdaptorSFun* const S = runningInstance())
        hostCall(
            S, "dspWarning", ANY_CALLBACK, [&] { S->warnings.add(message); }, message);
}

bool registerSFunctionParams(SysObjAdaptorSFun* S, int num) noexcept
{
    const auto body = [&] {
        if (num < 0 || static_cast<std::size_t>(num) != S->params.size())
            return S->refuse(fmt::format("the block declares {} parameters, but {} values were given; give {} values", num,
                                         S->params.size(), num)) != 0;
        S->hasRegisteredParams = true;
        return true;
    };
    return hostRequest(S, "registerSFunctionParams", INITIALIZE_SIZES, body, num);
}

bool dspIsPopupParamValid(SysObjAdaptorSFun* S, int idx, int lowest, int highest) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const double value = paramValue(S, idx, function);
        return (isWhole(value) && value >= lowest && value <= highest)
               || reportParam(S, "popupParamInvalid", idx, value,
                              fmt::format("a whole number from {} to {}", lowest, highest));
    };
    return hostCall(S, function, CHECK_PARAMETERS, body, idx, lowest, highest);
}

bool dspIsCheckboxParamValid(SysObjAdaptorSFun* S, int idx) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const double value = paramValue(S, idx, function);
        return value == 0.0 || value == 1.0 || reportParam(S, "checkboxParamInvalid", idx, value, "0 or 1");
    };
    return hostCall(S, function, CHECK_PARAMETERS, body, idx);
}

// ---- dspParamCheckerID

dspParamCheckerID::dspParamCheckerID(int product) noexcept : mProduct(product)
{
    traceSetUp("dspParamCheckerID", mProduct);
}

void dspParamCheckerID::setRealOnly(int isOn) noexcept
{
    mIsRealOnly = isOn;
    traceSetUp("dspParamCheckerID::setRealOnly", mIsRealOnly);
}

void dspParamCheckerID::setScalarOnly(int isOn) noexcept
{
    mIsScalarOnly = isOn;
    traceSetUp("dspParamCheckerID::setScalarOnly", mIsScalarOnly);
}

void dspParamCheckerID::setNumericClass(int numericClass) noexcept
{
    mNumericClass = numericClass;
    traceSetUp("dspParamCheckerID::setNumericClass", mNumericClass);
}

void dspParamCheckerID::setRangeKind(int rangeKind) noexcept
{
    mRangeKind = rangeKind;
    traceSetUp("dspParamCheckerID::setRangeKind", mRangeKind);
}

// Every value of this host is real, so the bound that counts is the real one.

void dspParamCheckerID::setLowerBound(int bound, double realBound) noexcept
{
    mLowerBound = realBound;
    traceBound("dspParamCheckerID::setLowerBound", bound, realBound);
}

void dspParamCheckerID::setUpperBound(int bound, double realBound) noexcept
{
    mUpperBound = realBound;
    traceBound("dspParamCheckerID::setUpperBound", bound, realBound);
}

bool dspParamCheckerID::check(SysObjAdaptorSFun* S, int idx, const resource_core::BaseMsgID& paramName, int errorMode,
                              int checkCondition) const noexcept
{
    const char* const function = "dspParamCheckerID::check";
    const auto body = [&] {
        const double value = paramValue(S, idx, function);
        const bool isWholeOnly = mNumericClass == WHOLE_NUMBERS;
        const bool hasUpper = mRangeKind == BETWEEN_LOWER_AND_UPPER;
        const bool hasLower = hasUpper || mRangeKind == AT_LEAST_LOWER;
        // Written so that NaN fails: a comparison with it is false.
        const bool isInRange = (!hasLower || value >= mLowerBound) && (!hasUpper || value <= mUpperBound);
        if (isInRange && !std::isnan(value) && (!isWholeOnly || isWhole(value)))
            return true;

        const char* const quantity = quantityText(paramName);
        std::string expected = quantity != nullptr ? quantity : isWholeOnly ? "a whole number" : "a number";
        if (hasUpper)
            expected += fmt::format(" from {} to {}", mLowerBound, mUpperBound);
        else if (hasLower)
            expected += fmt::format(" of {} or more", mLowerBound);
        return reportParam(S, "paramOutOfRange", idx, value, expected);
    };
    return hostCall(S, function, CHECK_PARAMETERS, body, idx, paramName, errorMode, checkCondition);
}

// ---- Port attributes still open

bool isInputDynamicallySized(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const Port* const found = S->input(port, function);
        return found != nullptr && !found->dims.isKnown();
    };
    return hostCall(S, function, ANY_CALLBACK, body, port);
}

bool isInputDynamicallyTyped(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const Port* const found = S->input(port, function);
        return found != nullptr && found->typeId == sysobj::DT_UNSET;
    };
    return hostCall(S, function, ANY_CALLBACK, body, port);
}

bool isOutputDynamicallyTyped(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const Port* const found = S->output(port, function);
        return found != nullptr && found->typeId == sysobj::DT_UNSET;
    };
    return hostCall(S, function, ANY_CALLBACK, body, port);
}

bool dspIsDataTypeSupported(SysObjAdaptorSFun* S, int typeId, int product, int direction, const char* portName,
                            std::uint32_t typeMask, int options) noexcept
{
    const auto body = [&] {
        if (isDataType(typeId) && (typeMask & (1U << typeId)) != 0)
            return true;
        S->report("dataTypeNotSupported",
                  fmt::format("{}: got data type {}, expected one of {}", portName, typeName(typeId), typeNames(typeMask)));
        return false;
    };
    return hostCall(S, "dspIsDataTypeSupported", ANY_CALLBACK, body, TypeText{typeId}, product, direction, portName,
                    MaskText{typeMask}, options);
}

}  // namespace OrbSimCommon
