#include "block_instance.h"

#include <fmt/format.h>

namespace blockhost {

namespace {

constexpr const char* PHASE_NAMES[] = {
    "mdlInitializeSizes", "mdlCheckParameters", "mdlInitializeSampleTimes", "propagation callbacks",
    "mdlSetWorkWidths",   "mdlStart",           "size rules",               "mdlOutputs",
    "mdlProcessParameters", "mdlTerminate",     "mdlVektCG"};

template <typename Items>
auto* itemAt(Items& items, int idx) noexcept
{
    const bool isInRange = idx >= 0 && static_cast<std::size_t>(idx) < items.size();
    return isInRange ? &items[static_cast<std::size_t>(idx)] : nullptr;
}

/// Calls visit(buffer, name) for every buffer of an instance.
template <typename Visit>
void forEachBuffer(const sysobj::SysObjAdaptorSFun& S, Visit visit)
{
    for (std::size_t i = 0; i < S.inputs.size(); ++i)
        visit(S.inputs[i].buffer, [i] { return fmt::format("input {}", i); });
    for (std::size_t i = 0; i < S.outputs.size(); ++i)
        visit(S.outputs[i].buffer, [i] { return fmt::format("output {}", i); });
    for (std::size_t i = 0; i < S.workVectors.size(); ++i)
        visit(S.workVectors[i].buffer, [&S, i] {
            const std::string& name = S.workVectors[i].name;
            return name.empty() ? fmt::format("work vector {}", i) : name;
        });
    for (const RunTimeParam& param : S.runTimeParams)
        visit(param.buffer, [&param] { return param.name; });
}

}  // namespace

std::string phaseText(unsigned phases)
{
    std::string text;
    for (unsigned i = 0; i < std::size(PHASE_NAMES); ++i)
        if ((phases & (1U << i)) != 0)
            text += (text.empty() ? "" : ", ") + std::string(PHASE_NAMES[i]);
    return text.empty() ? "no callback" : text;
}

sysobj::SysObjAdaptorSFun*& runningInstance() noexcept
{
    static thread_local sysobj::SysObjAdaptorSFun* instance = nullptr;
    return instance;
}

}  // namespace blockhost

namespace sysobj {

using namespace blockhost;

void SysObjAdaptorSFun::report(const char* id, std::string text)
{
    if (!pendingError)
        pendingError = PendingError{id, std::move(text)};
}

int SysObjAdaptorSFun::refuse(std::string reason)
{
    refusals.push_back(std::move(reason));
    return 0;
}

void SysObjAdaptorSFun::recordFault(std::exception_ptr exception) noexcept
{
    if (!fault)
        fault = std::move(exception);
}

void SysObjAdaptorSFun::recordFault(const std::string& text) noexcept
{
    try {
        recordFault(std::make_exception_ptr(esttform::Error(esttform::ErrorKind::Internal, text)));
    } catch (...) {
        recordFault(std::current_exception());
    }
}

bool SysObjAdaptorSFun::mayCall(const char* function, unsigned phases)
{
    if ((phase & phases) != 0)
        return true;
    recordFault(fmt::format("{} called in {}, expected in {}", function, phaseText(phase), phaseText(phases)));
    return false;
}

bool SysObjAdaptorSFun::isRefusalDue(const char* function)
{
    for (RefusalOrder& order : refusalOrders)
        if (order.function == function && --order.callsLeft == 0)
            return refuse(fmt::format("{} refused on request", function)) == 0;
    return false;
}

std::string SysObjAdaptorSFun::paramName(int idx) const
{
    const ParamLabel* const label = itemAt(paramLabels, idx);
    return label != nullptr && !label->name.empty() ? label->name : fmt::format("parameter {}", idx);
}

Port* SysObjAdaptorSFun::input(int port, const char* function)
{
    Port* const found = itemAt(inputs, port);
    if (found == nullptr)
        recordFault(fmt::format("{}: input port {} does not exist; the block has {}", function, port, inputs.size()));
    return found;
}

Port* SysObjAdaptorSFun::output(int port, const char* function)
{
    Port* const found = itemAt(outputs, port);
    if (found == nullptr)
        recordFault(fmt::format("{}: output port {} does not exist; the block has {}", function, port, outputs.size()));
    return found;
}

WorkVector* SysObjAdaptorSFun::workVector(int idx, const char* function)
{
    WorkVector* const found = itemAt(workVectors, idx);
    if (found == nullptr)
        recordFault(fmt::format("{}: work vector {} does not exist; the block has {}", function, idx, workVectors.size()));
    return found;
}

RunTimeParam* SysObjAdaptorSFun::runTimeParam(int idx, const char* function)
{
    RunTimeParam* const found = itemAt(runTimeParams, idx);
    if (found == nullptr)
        recordFault(fmt::format("{}: run-time parameter {} does not exist; the block has {}", function, idx,
                                runTimeParams.size()));
    return found;
}

std::string SysObjAdaptorSFun::nameOf(const void* address) const
{
    if (address == nullptr)
        return "null";
    for (const yrArray& param : params)
        if (&param == address)
            return paramName(param.idx);
    for (std::size_t i = 0; i < inputs.size(); ++i)
        if (inputs[i].signal.data == address)
            return fmt::format("input {}", i);
    std::string found = "non-null";
    forEachBuffer(*this, [&](const SignalBuffer& buffer, auto name) {
        if (buffer.data() == address)
            found = name();
    });
    return found;
}

void SysObjAdaptorSFun::checkGuardZones(const char* callback)
{
    if (!hasGuardZones())
        return;
    forEachBuffer(*this, [&](const SignalBuffer& buffer, auto name) {
        if (const char* const side = buffer.overwrittenSide())
            recordFault(fmt::format("{} wrote {} of {}", callback, side, name()));
    });
}

}  // namespace sysobj
