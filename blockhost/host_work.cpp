#include "data_types.h"
#include "host_call.h"

#include <fmt/format.h>

using namespace blockhost;

namespace {

/// Writes a field of a work vector that needs no check.
template <typename ResultText = void>
void setField(sysobj::SysObjAdaptorSFun* S, const char* function, int idx, int WorkVector::*field, int value) noexcept
{
    const auto body = [&] {
        if (WorkVector* const vector = S->workVector(idx, function))
            vector->*field = value;
    };
    if constexpr (std::is_void_v<ResultText>)
        hostCall(S, function, WORK_WIDTHS, body, idx, value);
    else
        hostCall(S, function, WORK_WIDTHS, body, idx, ResultText{value});
}

}  // namespace

namespace sysobj {

extern "C" {

int bhSetNumRunTimeParams(SysObjAdaptorSFun* S, int num) noexcept
{
    const auto body = [&] {
        if (num < 0)
            return S->refuse(fmt::format("{} run-time parameters: the number is negative", num));
        S->runTimeParams = std::vector<RunTimeParam>(static_cast<std::size_t>(num));
        return 1;
    };
    return hostRequest(S, __func__, WORK_WIDTHS, body, num);
}

void bhRegDlgParamAsRunTimeParam(SysObjAdaptorSFun* S, int dlgIdx, int rtpIdx, const char* name, int typeId) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        RunTimeParam* const param = S->runTimeParam(rtpIdx, function);
        if (param == nullptr)
            return;
        if (dlgIdx < 0 || static_cast<std::size_t>(dlgIdx) >= S->params.size())
            return S->recordFault(fmt::format("{}: parameter {} does not exist; the block has {}", function, dlgIdx,
                                              S->params.size()));
        if (!isDataType(typeId))
            return S->recordFault(fmt::format("{}: got data type {}, expected an id from 0 to 8", function, typeId));
        param->name = name != nullptr ? name : "";
        param->dlgIdx = dlgIdx;
        param->typeId = typeId;
    };
    hostCall(S, function, WORK_WIDTHS, body, dlgIdx, rtpIdx, name, TypeText{typeId});
}

void bhUpdateDlgParamAsRunTimeParam(SysObjAdaptorSFun* S, int rtpIdx) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        if (const RunTimeParam* const param = S->runTimeParam(rtpIdx, function))
            storeReal(S->params[static_cast<std::size_t>(param->dlgIdx)].value, param->typeId, param->buffer.data());
    };
    hostCall(S, function, WITH_BUFFERS, body, rtpIdx);
}

const void* GetRTPDataPtr(SysObjAdaptorSFun* S, int rtpIdx) noexcept
{
    static const double NO_VALUE = 0.0;  // so that a block that asked for too much lives until the fault is thrown
    const char* const function = __func__;
    const auto body = [&]() -> const void* {
        const RunTimeParam* const param = S->runTimeParam(rtpIdx, function);
        if (param != nullptr && param->buffer.isAllocated())
            return param->buffer.data();
        S->recordFault(fmt::format("{}: run-time parameter {} has no value before mdlStart", function, rtpIdx));
        return &NO_VALUE;
    };
    return hostAddress(S, function, ANY_CALLBACK, body, rtpIdx);
}

bool bhSetNumDWork(SysObjAdaptorSFun* S, int num) noexcept
{
    const auto body = [&] {
        if (num < (S->phase == INITIALIZE_SIZES ? DIMS_UNKNOWN : 0))
            return S->refuse(fmt::format("{} work vectors: the number is negative", num)) != 0;
        S->workVectorNum = num;
        S->workVectors = std::vector<WorkVector>(static_cast<std::size_t>(num < 0 ? 0 : num));
        return true;
    };
    return hostRequest(S, __func__, INITIALIZE_SIZES | WORK_WIDTHS, body, num);
}

void bhSetDWorkName(SysObjAdaptorSFun* S, int idx, const char* name) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        WorkVector* const vector = S->workVector(idx, function);
        if (vector != nullptr && name != nullptr)
            vector->name = name;
    };
    hostCall(S, function, WORK_WIDTHS, body, idx, name);
}

void bhSetDWorkWidth(SysObjAdaptorSFun* S, int idx, int width) noexcept
{
    setField(S, __func__, idx, &WorkVector::width, width);
}

void bhSetDWorkDataType(SysObjAdaptorSFun* S, int idx, int typeId) noexcept
{
    setField<TypeText>(S, __func__, idx, &WorkVector::typeId, typeId);
}

void bhSetDWorkComplexSignal(SysObjAdaptorSFun* S, int idx, int isComplex) noexcept
{
    setField(S, __func__, idx, &WorkVector::isComplex, isComplex);
}

void bhSetDWorkUsageType(SysObjAdaptorSFun* S, int idx, int usage) noexcept
{
    setField(S, __func__, idx, &WorkVector::usage, usage);
}

void bhSetSignalSizesComputeType(SysObjAdaptorSFun* S, int type) noexcept
{
    hostCall(
        S, __func__, WORK_WIDTHS, [&] { S->signalSizesComputeType = type; }, type);
}

void bhAddVariableSizeSignalsRuntimeChecker(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        if (Port* const found = S->input(port, function))
            found->hasSizeChecker = true;
    };
    hostCall(S, function, WORK_WIDTHS, body, port);
}

void bhAddOutputDimsDependencyRule(SysObjAdaptorSFun* S, int outputPort, const DimsDependInfo_T* rule) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        Port* const port = S->output(outputPort, function);
        if (port == nullptr)
            return;
        if (rule == nullptr || rule->setOutputDims == nullptr)
            return S->recordFault(fmt::format("{}: the rule of output port {} has no function", function, outputPort));
        if (rule->inputPortNum < 0)
            return S->recordFault(fmt::format("{}: the rule of output port {} depends on {} input ports, expected 0 or more",
                                              function, outputPort, rule->inputPortNum));
        if (rule->inputPorts == nullptr && rule->inputPortNum > 0)
            return S->recordFault(fmt::format("{}: the rule of output port {} depends on {} input ports and has no list of them",
                                              function, outputPort, rule->inputPortNum));
        port->sizeRule.emplace();
        port->sizeRule->setOutputDims = rule->setOutputDims;
        port->sizeRule->setOutputDimsCG = rule->setOutputDimsCG;
        if (rule->inputPortNum > 0)
            port->sizeRule->inputPorts.assign(rule->inputPorts, rule->inputPorts + rule->inputPortNum);
    };
    hostCall(S, function, WORK_WIDTHS, body, outputPort);
}

}  // extern "C"

}  // namespace sysobj
