#include "host_call.h"

#include <fmt/format.h>

using namespace blockhost;

namespace {

/// Creates num ports and connects each to its signal.
int createPorts(sysobj::SysObjAdaptorSFun* S, int num, const char* direction, const std::vector<Signal>& signals,
                std::vector<Port>& ports, bool& hasNum)
{
    const bool isOutput = &ports == &S->outputs;
    if (num < 0)
        return S->refuse(fmt::format("{} {} ports: the number is negative", num, direction));
    if (hasNum)
        return S->refuse(fmt::format("the number of {} ports was declared already: {}", direction, ports.size()));
    if (signals.size() > static_cast<std::size_t>(num))
        return S->refuse(fmt::format("{} {} ports declared, but signals are connected to {}", num, direction, signals.size()));
    for (std::size_t i = 0; isOutput && i < signals.size(); ++i)
        if (signals[i].data != nullptr)
            return S->refuse(fmt::format("output port {}: got an array, expected none; the host keeps the elements", i));
    hasNum = true;
    ports = std::vector<Port>(static_cast<std::size_t>(num));
    for (std::size_t i = 0; i < signals.size(); ++i)
        ports[i].signal = signals[i];
    return 1;
}

/// Writes a field of a port that needs no check.
template <typename Value>
void setField(sysobj::SysObjAdaptorSFun* S, const char* function, Direction direction, int port, Value Port::*field,
              Value value) noexcept
{
    const auto body = [&] {
        if (Port* const found = direction == Direction::In ? S->input(port, function) : S->output(port, function))
            found->*field = value;
    };
    if constexpr (std::is_unsigned_v<Value>)
        hostCall(S, function, INITIALIZE_SIZES, body, port, MaskText{value});
    else
        hostCall(S, function, INITIALIZE_SIZES, body, port, value);
}

/// Records a setting of the whole instance.
void record(sysobj::SysObjAdaptorSFun* S, const char* function, int sysobj::SysObjAdaptorSFun::*field, int value) noexcept
{
    hostCall(
        S, function, INITIALIZE_SIZES, [&] { S->*field = value; }, value);
}

void setTime(sysobj::SysObjAdaptorSFun* S, const char* function, std::vector<double>& times, int idx, double time) noexcept
{
    const auto body = [&] {
        if (idx < 0 || static_cast<std::size_t>(idx) >= times.size())
            S->recordFault(fmt::format("{}: sample time {} does not exist; the block has {}", function, idx, times.size()));
        else
            times[static_cast<std::size_t>(idx)] = time;
    };
    hostCall(S, function, SAMPLE_TIMES, body, idx, time);
}

}  // namespace

namespace sysobj {

extern "C" {

int bhSetNumInputPorts(SysObjAdaptorSFun* S, int num) noexcept
{
    return hostRequest(
        S, __func__, INITIALIZE_SIZES,
        [&] { return createPorts(S, num, "input", S->inputSignals, S->inputs, S->hasInputNum); }, num);
}

int bhSetNumOutputPorts(SysObjAdaptorSFun* S, int num) noexcept
{
    return hostRequest(
        S, __func__, INITIALIZE_SIZES,
        [&] { return createPorts(S, num, "output", S->outputSignals, S->outputs, S->hasOutputNum); }, num);
}

void bhSetSFcnParamTunable(SysObjAdaptorSFun* S, int idx, int isTunable) noexcept
{
    const char* const function = __func__;
    hostCall(
        S, function, INITIALIZE_SIZES,
        [&] {
            if (idx < 0 || static_cast<std::size_t>(idx) >= S->isTunable.size())
                S->recordFault(fmt::format("{}: parameter {} does not exist; the block has {}", function, idx,
                                           S->params.size()));
            else
                S->isTunable[static_cast<std::size_t>(idx)] = isTunable != 0;
        },
        idx, isTunable);
}

void bhSetInputPortComplexSignal(SysObjAdaptorSFun* S, int port, int isComplex) noexcept
{
    setField(S, __func__, Direction::In, port, &Port::isComplex, isComplex);
}

void bhSetOutputPortComplexSignal(SysObjAdaptorSFun* S, int port, int isComplex) noexcept
{
    setField(S, __func__, Direction::Out, port, &Port::isComplex, isComplex);
}

void bhSetInputPortOptimOpts(SysObjAdaptorSFun* S, int port, std::uint32_t options) noexcept
{
    setField(S, __func__, Direction::In, port, &Port::optimOpts, options);
}

void bhSetOutputPortOptimOpts(SysObjAdaptorSFun* S, int port, std::uint32_t options) noexcept
{
    setField(S, __func__, Direction::Out, port, &Port::optimOpts, options);
}

void bhSetInputPortDirectFeedThrough(SysObjAdaptorSFun* S, int port, int hasFeedThrough) noexcept
{
    setField(S, __func__, Direction::In, port, &Port::hasFeedThrough, hasFeedThrough);
}

void bhSetInputPortOverWritable(SysObjAdaptorSFun* S, int port, int isOverWritable) noexcept
{
    setField(S, __func__, Direction::In, port, &Port::isOverWritable, isOverWritable);
}

void bhSetInputPortRequiredContiguous(SysObjAdaptorSFun* S, int port, int isRequired) noexcept
{
    setField(S, __func__, Direction::In, port, &Port::isContiguous, isRequired);
}

void bhRegMdlSetInputPortDimensionsModeFcn(SysObjAdaptorSFun* S, SetInputPortDimsModeFcn fcn) noexcept
{
    hostCall(
        S, __func__, INITIALIZE_SIZES, [&] { S->setInputPortDimsMode = fcn; },
        NameText{fcn == nullptr ? "null" : "mdlSetInputPortDimsMode"});
}

void bhSetVektCG(SysObjAdaptorSFun* S, int hasVektCG) noexcept
{
    record(S, __func__, &SysObjAdaptorSFun::hasVektCG, hasVektCG);
}

void bhSetNumSampleTimes(SysObjAdaptorSFun* S, int num) noexcept
{
    hostCall(
        S, __func__, INITIALIZE_SIZES,
        [&] {
            if (num < 0)
                return S->recordFault(fmt::format("bhSetNumSampleTimes: got {}, expected 0 or more", num));
            S->samplePeriods.assign(static_cast<std::size_t>(num), -1.0);
            S->sampleOffsets.assign(static_cast<std::size_t>(num), 0.0);
        },
        num);
}

void bhSetOptions(SysObjAdaptorSFun* S, std::uint32_t options) noexcept
{
    hostCall(
        S, __func__, INITIALIZE_SIZES, [&] { S->options = options; }, MaskText{options});
}

void bhSetModelReferenceSampleTimeInheritanceRule(SysObjAdaptorSFun* S, int rule) noexcept
{
    record(S, __func__, &SysObjAdaptorSFun::sampleTimeInheritanceRule, rule);
}

void bhSetModelReferenceNormalModeSupport(SysObjAdaptorSFun* S, int support) noexcept
{
    record(S, __func__, &SysObjAdaptorSFun::normalModeSupport, support);
}

void bhSetSimStateCompliance(SysObjAdaptorSFun* S, int compliance) noexcept
{
    record(S, __func__, &SysObjAdaptorSFun::simStateCompliance, compliance);
}

void bhSetSampleTime(SysObjAdaptorSFun* S, int idx, double period) noexcept
{
    setTime(S, __func__, S->samplePeriods, idx, period);
}

void bhSetOffsetTime(SysObjAdaptorSFun* S, int idx, double offset) noexcept
{
    setTime(S, __func__, S->sampleOffsets, idx, offset);
}

const yrArray* bhGetSFcnParam(SysObjAdaptorSFun* S, int idx) noexcept
{
    static const yrArray NO_PARAM{-1, 0.0};  // so that a block that asked for too much lives until the fault is thrown
    const char* const function = __func__;
    const auto body = [&]() -> const yrArray* {
        if (idx >= 0 && static_cast<std::size_t>(idx) < S->params.size())
            return &S->params[static_cast<std::size_t>(idx)];
        S->recordFault(fmt::format("{}: parameter {} does not exist; the block has {}", function, idx, S->params.size()));
        return &NO_PARAM;
    };
    return hostAddress(S, function, ANY_CALLBACK, body, idx);
}

const double* bhGetArrayReal(const yrArray* value) noexcept
{
    const char* const function = __func__;
    if (SysObjAdaptorSFun* const S = runningInstance(); S != nullptr && S->trace.isOn()) {
        try {
            hostCall(
                S, function, ANY_CALLBACK, [&] { return value->value; }, NameText{S->nameOf(value)});
        } catch (...) {
            S->recordFault(std::current_exception());
        }
    }
    return &value->value;
}

}  // extern "C"

}  // namespace sysobj
