// SysObjAdaptorSFun: everything the host keeps of one block instance. Blocks hold a pointer and see nothing of it;
// the host functions, the drivers of the callbacks and tests read and write its fields.
#pragma once

#include "block_context.h"
#include "call_trace.h"
#include "signal_buffer.h"
#include "warning_table.h"

#include <array>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace sysobj {

/// Value of one dialog parameter. In this host every parameter is one real number.
class yrArray {
public:
    int idx = 0;
    double value = 0.0;
};

}  // namespace sysobj

namespace blockhost {

/// What the host is doing with an instance. A host function names the phases it may be called in as a mask.
enum Phase : unsigned {
    NO_CALLBACK = 0,
    INITIALIZE_SIZES = 1U << 0,
    CHECK_PARAMETERS = 1U << 1,
    SAMPLE_TIMES = 1U << 2,
    PROPAGATION = 1U << 3,
    WORK_WIDTHS = 1U << 4,
    START = 1U << 5,
    SIZE_RULE = 1U << 6,
    OUTPUTS = 1U << 7,
    PROCESS_PARAMETERS = 1U << 8,
    TERMINATE = 1U << 9,
    CODE_GENERATION = 1U << 10,

    PORT_SET_UP = INITIALIZE_SIZES | PROPAGATION,
    WITH_BUFFERS = START | SIZE_RULE | OUTPUTS | PROCESS_PARAMETERS | TERMINATE,
    ANY_CALLBACK = (1U << 11) - 1,
};

/// The callbacks of a mask of phases, for messages: "mdlStart, mdlOutputs".
std::string phaseText(unsigned phases);

/// An error of the block that waits for the host.
struct PendingError {
    std::string id;
    std::string text;
};

/// The rule by which an output's current size follows the inputs.
struct SizeRule {
    std::vector<int> inputPorts;  ///< only recorded: the rule runs before every step
    decltype(sysobj::DimsDependInfo_T::setOutputDims) setOutputDims = nullptr;
    decltype(sysobj::DimsDependInfo_T::setOutputDimsCG) setOutputDimsCG = nullptr;  ///< only recorded
};

/// One port: what the block declared, what propagation settled, what it is connected to, and its memory.
struct Port {
    Signal signal;
    Dims dims;
    int typeId = sysobj::DT_UNSET;
    int mode = sysobj::DIMS_MODE_UNSET;
    int frameData = -1;
    std::optional<SizeRule> sizeRule;
    Dims current;  ///< equal to dims unless the port has variable size
    SignalBuffer buffer;

    // ---- Settings that this host only records; current sizes are checked whether asked for or not
    int isComplex = 0;
    std::uint32_t optimOpts = 0;
    int hasFeedThrough = 0;
    int isOverWritable = 0;
    int isContiguous = 0;
    bool hasSizeChecker = false;

    const void* data() const noexcept { return signal.data != nullptr ? signal.data : buffer.data(); }
};

struct WorkVector {
    std::string name;
    int width = sysobj::DIMS_UNKNOWN;
    int typeId = sysobj::DT_UNSET;
    SignalBuffer buffer;

    // ---- Settings that this host only records
    int isComplex = 0;
    int usage = 0;
};

struct RunTimeParam {
    std::string name;
    int dlgIdx = -1;
    int typeId = sysobj::DT_UNSET;
    SignalBuffer buffer;
};

/// A test hook: the call of a host function that is to be refused.
struct RefusalOrder {
    std::string function;
    int callsLeft;  ///< refused when it reaches 0
};

}  // namespace blockhost

namespace sysobj {

class SysObjAdaptorSFun {
public:
    // ---- Dialog parameters
    std::vector<yrArray> params;
    std::vector<bool> isTunable;
    std::vector<blockhost::ParamLabel> paramLabels;
    bool hasRegisteredParams = false;

    // ---- Ports. The signals are given before the block says how many ports it has.
    std::vector<blockhost::Signal> inputSignals;
    std::vector<blockhost::Signal> outputSignals;
    bool hasInputNum = false;
    bool hasOutputNum = false;
    std::vector<blockhost::Port> inputs;
    std::vector<blockhost::Port> outputs;
    SetInputPortDimsModeFcn setInputPortDimsMode = nullptr;

    // ---- Memory
    int workVectorNum = 0;  ///< DIMS_UNKNOWN: to be said in mdlSetWorkWidths
    std::vector<blockhost::WorkVector> workVectors;
    std::vector<blockhost::RunTimeParam> runTimeParams;
    void* userData = nullptr;

    // ---- Settings that this host only records
    std::vector<double> samplePeriods;
    std::vector<double> sampleOffsets;
    std::uint32_t options = 0;
    int hasVektCG = 0;
    int sampleTimeInheritanceRule = 0;
    int normalModeSupport = 0;
    int simStateCompliance = 0;
    int signalSizesComputeType = 0;

    // ---- What happened
    blockhost::Phase phase = blockhost::NO_CALLBACK;
    std::optional<blockhost::PendingError> pendingError;
    blockhost::WarningTable warnings;
    std::vector<std::string> refusals;
    std::vector<blockhost::RefusalOrder> refusalOrders;
    std::exception_ptr fault;  ///< of the host or of the block's use of it; thrown after the callback
    blockhost::CallTrace trace;

    /// Records an error of the block; the first one stays.
    void report(const char* id, std::string text);
    /// Records why a setter refuses. @return 0, the setter's result
    int refuse(std::string reason);
    /// Records a fault unless there is one.
    void recordFault(std::exception_ptr exception) noexcept;
    /// Records that the block broke its contract.
    void recordFault(const std::string& text) noexcept;
    /// Records a fault and gives false when the running callback is none of the phases.
    bool mayCall(const char* function, unsigned phases);
    /// True when a test asked for this call to be refused; the refusal is recorded.
    bool isRefusalDue(const char* function);

    /// The dialog parameter's name, or "parameter 3" when it has none.
    std::string paramName(int idx) const;
    /// The port, work vector or run-time parameter with an index from the block; null and a fault when it is out of range.
    blockhost::Port* input(int port, const char* function);
    blockhost::Port* output(int port, const char* function);
    blockhost::WorkVector* workVector(int idx, const char* function);
    blockhost::RunTimeParam* runTimeParam(int idx, const char* function);
    /// The name of what begins at an address: "input 0", "output 1", a parameter's, work vector's or run-time parameter's
    /// own name; "null" or "non-null" for others.
    std::string nameOf(const void* address) const;
    /// Checks every guard zone; records a fault that names buffer and callback.
    void checkGuardZones(const char* callback);
};

}  // namespace sysobj

namespace blockhost {

/// The instance whose callback runs on this thread, null outside of callbacks.
sysobj::SysObjAdaptorSFun*& runningInstance() noexcept;

}  // namespace blockhost
