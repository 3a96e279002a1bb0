#include "data_types.h"
#include "host_call.h"

#include <fmt/format.h>

using namespace blockhost;

namespace {

/// "input port 1" or "output port 0".
std::string portText(Direction direction, int port)
{
    return fmt::format("{} port {}", direction == Direction::In ? "input" : "output", port);
}

Port* portAt(sysobj::SysObjAdaptorSFun* S, Direction direction, int port, const char* function)
{
    return direction == Direction::In ? S->input(port, function) : S->output(port, function);
}

/// Settles a size unless it contradicts what is settled or connected. A size known already is kept as it was first given.
int setDims(sysobj::SysObjAdaptorSFun* S, Direction direction, int portIdx, const sysobj::DimsInfo_tag& record,
            const char* function)
{
    Port* const port = portAt(S, direction, portIdx, function);
    if (port == nullptr)
        return 0;
    const auto refuse = [&](const std::string& size, const std::string& reason) {
        return S->refuse(fmt::format("{}: {} refused: {}", portText(direction, portIdx), size, reason));
    };
    if (const char* const problem = Dims::problemOf(record))
        return refuse("size", problem);
    const Dims dims(record);
    if (!port->dims.agreesWith(dims))
        return refuse(dims.text(), "settled as " + port->dims.text());
    if (port->signal.dims && !port->signal.dims->agreesWith(dims))
        return refuse(dims.text(), "connected signal is " + port->signal.dims->text());
    if (!port->dims.isKnown() && dims.num() != sysobj::DIMS_UNKNOWN)
        port->dims = dims;
    return 1;
}

int setMatrix(sysobj::SysObjAdaptorSFun* S, Direction direction, int port, int rows, int cols, const char* function)
{
    const int sizes[] = {rows, cols};
    return setDims(S, direction, port, {sysobj::DIMS_UNKNOWN, 2, sizes}, function);
}

/// Settles a data type, mode or frame setting: a number that is -1 while open.
///
/// @param connected  what the connected signal has, -1 when that is open
/// @param nameOf     text of a value
template <typename NameOf>
int setNumber(sysobj::SysObjAdaptorSFun* S, Direction direction, int portIdx, int Port::*field, int connected, int value,
              const char* what, NameOf nameOf)
{
    Port& port = direction == Direction::In ? S->inputs[static_cast<std::size_t>(portIdx)]
                                            : S->outputs[static_cast<std::size_t>(portIdx)];
    const auto refuse = [&](const char* reason, int other) {
        return S->refuse(fmt::format("{}: {} {} refused: {} {}", portText(direction, portIdx), what, nameOf(value), reason,
                                     nameOf(other)));
    };
    if (port.*field != -1 && port.*field != value)
        return refuse("settled as", port.*field);
    if (value != -1 && connected != -1 && value != connected)
        return refuse("connected signal is", connected);
    port.*field = value;
    return 1;
}

int setType(sysobj::SysObjAdaptorSFun* S, Direction direction, int portIdx, int typeId, const char* function)
{
    const Port* const port = portAt(S, direction, portIdx, function);
    if (port == nullptr)
        return 0;
    if (typeId != sysobj::DT_UNSET && !isDataType(typeId))
        return S->refuse(fmt::format("{}: data type {} refused: expected an id from -1 to 8", portText(direction, portIdx),
                                     typeId));
    return setNumber(S, direction, portIdx, &Port::typeId, port->signal.typeId.value_or(-1), typeId, "data type", typeName);
}

int setMode(sysobj::SysObjAdaptorSFun* S, Direction direction, int portIdx, int mode, const char* function)
{
    const Port* const port = portAt(S, direction, portIdx, function);
    if (port == nullptr)
        return 0;
    if (mode < sysobj::DIMS_MODE_UNSET || mode > sysobj::DIMS_MODE_VARIABLE)
        return S->refuse(fmt::format("{}: dimensions mode {} refused: expected -1, 0 or 1", portText(direction, portIdx),
                                     mode));
    return setNumber(S, direction, portIdx, &Port::mode, port->signal.mode.value_or(-1), mode, "dimensions mode", modeName);
}

int setFrameData(sysobj::SysObjAdaptorSFun* S, Direction direction, int portIdx, int frameData, const char* function)
{
    if (portAt(S, direction, portIdx, function) == nullptr)
        return 0;
    if (frameData < -1 || frameData > 1)
        return S->refuse(fmt::format("{}: frame setting {} refused: expected -1, 0 or 1", portText(direction, portIdx),
                                     frameData));
    return setNumber(S, direction, portIdx, &Port::frameData, -1, frameData, "frame setting", [](int value) { return value; });
}

/// Value of a number of a port, as a getter gives it.
template <typename ResultText>
int getNumber(sysobj::SysObjAdaptorSFun* S, Direction direction, int port, int Port::*field, const char* function) noexcept
{
    const auto body = [&] {
        const Port* const found = portAt(S, direction, port, function);
        return found != nullptr ? found->*field : -1;
    };
    return hostCall<ResultText>(S, function, ANY_CALLBACK, body, port);
}

int setRecord(sysobj::SysObjAdaptorSFun* S, Direction direction, int port, const sysobj::DimsInfo_tag* dims,
              const char* function)
{
    if (dims == nullptr)
        return S->refuse(portText(direction, port) + ": size refused: the record is null");
    return setDims(S, direction, port, *dims, function);
}

}  // namespace

namespace sysobj {

extern "C" {

DimsInfo_tag getDefaultDimensionInfo() noexcept
{
    const DimsInfo_tag dynamic{DIMS_UNKNOWN, DIMS_UNKNOWN, nullptr};
    if (SysObjAdaptorSFun* const S = runningInstance())
        hostCall<NameText>(S, __func__, ANY_CALLBACK, [] { return "dynamic"; });
    return dynamic;
}

int bhSetInputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* dims) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setRecord(S, Direction::In, port, dims, function); }, port, DimsText{dims});
}

int bhSetOutputPortDimensionInfo(SysObjAdaptorSFun* S, int port, const DimsInfo_tag* dims) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setRecord(S, Direction::Out, port, dims, function); }, port, DimsText{dims});
}

int bhSetInputPortMatrixDimensions(SysObjAdaptorSFun* S, int port, int rows, int cols) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setMatrix(S, Direction::In, port, rows, cols, function); }, port, rows, cols);
}

int bhSetOutputPortMatrixDimensions(SysObjAdaptorSFun* S, int port, int rows, int cols) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setMatrix(S, Direction::Out, port, rows, cols, function); }, port, rows, cols);
}

int bhSetInputPortDataType(SysObjAdaptorSFun* S, int port, int typeId) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setType(S, Direction::In, port, typeId, function); }, port, TypeText{typeId});
}

int bhSetOutputPortDataType(SysObjAdaptorSFun* S, int port, int typeId) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setType(S, Direction::Out, port, typeId, function); }, port, TypeText{typeId});
}

int bhSetInputPortDimensionsMode(SysObjAdaptorSFun* S, int port, int mode) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setMode(S, Direction::In, port, mode, function); }, port, ModeText{mode});
}

int bhSetOutputPortDimensionsMode(SysObjAdaptorSFun* S, int port, int mode) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setMode(S, Direction::Out, port, mode, function); }, port, ModeText{mode});
}

int bhSetInputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setFrameData(S, Direction::In, port, frameData, function); }, port, frameData);
}

int bhSetOutputPortFrameData(SysObjAdaptorSFun* S, int port, int frameData) noexcept
{
    const char* const function = __func__;
    return hostRequest(
        S, function, PORT_SET_UP, [&] { return setFrameData(S, Direction::Out, port, frameData, function); }, port,
        frameData);
}

int bhGetInputPortNumDimensions(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    return hostCall(
        S, function, ANY_CALLBACK,
        [&] {
            const Port* const found = S->input(port, function);
            return found != nullptr ? found->dims.num() : DIMS_UNKNOWN;
        },
        port);
}

int bhGetInputPortDimensionSize(SysObjAdaptorSFun* S, int port, int dim) noexcept
{
    const char* const function = __func__;
    return hostCall(
        S, function, ANY_CALLBACK,
        [&] {
            const Port* const found = S->input(port, function);
            if (dim < 0)
                S->recordFault(fmt::format("{}: dimension {} does not exist", function, dim));
            return found != nullptr && dim >= 0 ? found->dims.size(dim) : DIMS_UNKNOWN;
        },
        port, dim);
}

int bhGetInputPortDataType(SysObjAdaptorSFun* S, int port) noexcept
{
    return getNumber<TypeText>(S, Direction::In, port, &Port::typeId, __func__);
}

int bhGetOutputPortDataType(SysObjAdaptorSFun* S, int port) noexcept
{
    return getNumber<TypeText>(S, Direction::Out, port, &Port::typeId, __func__);
}

int bhGetInputPortDimensionsMode(SysObjAdaptorSFun* S, int port) noexcept
{
    return getNumber<ModeText>(S, Direction::In, port, &Port::mode, __func__);
}

int bhGetOutputPortDimensionsMode(SysObjAdaptorSFun* S, int port) noexcept
{
    return getNumber<ModeText>(S, Direction::Out, port, &Port::mode, __func__);
}

}  // extern "C"

}  // namespace sysobj
