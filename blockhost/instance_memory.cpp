#include "instance_memory.h"

#include "data_types.h"

#include <fmt/format.h>

#include <cstdint>

namespace blockhost {

using esttform::Error;
using esttform::ErrorKind;

namespace {

void allocatePort(Port& port, const std::string& name)
{
    const std::size_t byteNum = byteNumOf(port.typeId);
    port.current = port.dims;
    if (port.signal.data == nullptr)
        port.buffer = SignalBuffer(name, static_cast<std::size_t>(port.dims.width()) * byteNum);
    else if (reinterpret_cast<std::uintptr_t>(port.signal.data) % byteNum != 0)
        throw Error(ErrorKind::Usage, fmt::format("{}: the array is not aligned for {}; expected a multiple of {} bytes",
                                                  name, typeName(port.typeId), byteNum));
}

void allocateWorkVector(WorkVector& vector, std::size_t idx)
{
    const std::string name = vector.name.empty() ? fmt::format("work vector {}", idx) : vector.name;
    if (vector.width < 0 || !isDataType(vector.typeId))
        throw Error(ErrorKind::Internal, fmt::format("{}: declared with width {} and data type {}, expected both", name,
                                                     vector.width, typeName(vector.typeId)));
    vector.buffer = SignalBuffer(name, static_cast<std::size_t>(vector.width) * byteNumOf(vector.typeId));
}

}  // namespace

void allocateMemory(sysobj::SysObjAdaptorSFun& S)
{
    for (std::size_t i = 0; i < S.inputs.size(); ++i)
        allocatePort(S.inputs[i], fmt::format("input {}", i));
    for (std::size_t i = 0; i < S.outputs.size(); ++i)
        allocatePort(S.outputs[i], fmt::format("output {}", i));
    if (S.workVectorNum < 0)
        throw Error(ErrorKind::Internal, "the number of work vectors was announced and not declared in mdlSetWorkWidths");
    for (std::size_t i = 0; i < S.workVectors.size(); ++i)
        allocateWorkVector(S.workVectors[i], i);
    for (std::size_t i = 0; i < S.runTimeParams.size(); ++i) {
        RunTimeParam& param = S.runTimeParams[i];
        if (param.dlgIdx < 0)
            throw Error(ErrorKind::Internal, fmt::format("run-time parameter {} was declared and not registered", i));
        param.buffer = SignalBuffer(param.name, byteNumOf(param.typeId));
    }
}

}  // namespace blockhost
