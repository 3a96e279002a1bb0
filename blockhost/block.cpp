#include "block.h"

#include "block_library.h"
#include "callback_runner.h"
#include "instance_memory.h"
#include "message_catalog.h"
#include "propagation.h"

#include <fmt/format.h>

#include <cstring>
#include <utility>

namespace blockhost {

using esttform::Error;
using esttform::ErrorKind;
using sysobj::SysObjAdaptorSFun;

struct Block::Impl {
    BlockLibrary library;  // first: the instance refers to texts of the library
    SysObjAdaptorSFun instance;
    std::vector<Offer> offerOrder;
    Lifecycle lifecycle;
    std::optional<esttform::Message> stepError;

    explicit Impl(const std::string& libraryPath) : library(libraryPath) {}

    const Callbacks& callbacks() const noexcept { return library.callbacks(); }

    /// Carries out one call of the order.
    template <typename Action>
    bool carryOut(Call call, Action action)
    {
        if (!lifecycle.admit(call))
            return false;
        try {
            action();
        } catch (...) {
            lifecycle.fail(call);
            throw;
        }
        lifecycle.succeed(call);
        return true;
    }

    /// One callback of the set-up that has no further arguments.
    bool setUp(Call call, Phase phase, const char* name, void (*callback)(SysObjAdaptorSFun*))
    {
        return carryOut(call, [&] { throwIfStopped(instance, name, run(phase, name, callback)); });
    }

    std::optional<PendingError> run(Phase phase, const char* name, void (*callback)(SysObjAdaptorSFun*))
    {
        return runCallback(instance, phase, name, [&] { callback(&instance); });
    }

    void runSizeRules();
    void requireParam(int idx) const;
    void changeRunning(int idx, double value);
};

namespace {

/// A port by index, null when there is none.
template <typename Ports>
auto* portAt(Ports& ports, int idx) noexcept
{
    const bool isInRange = idx >= 0 && static_cast<std::size_t>(idx) < ports.size();
    return isInRange ? &ports[static_cast<std::size_t>(idx)] : nullptr;
}

}  // namespace

void Block::Impl::runSizeRules()
{
    for (std::size_t i = 0; i < instance.outputs.size(); ++i) {
        Port& port = instance.outputs[i];
        if (!port.sizeRule)
            continue;
        const int outputPort = static_cast<int>(i);
        const auto invoke = [&] { port.sizeRule->setOutputDims(&instance, outputPort); };
        if (const auto error = runCallback(instance, SIZE_RULE, "sizeRule", invoke, outputPort))
            throw Error(ErrorKind::Internal, "the size rule reported an error: " + error->text);
    }
}

void Block::Impl::requireParam(int idx) const
{
    if (idx < 0 || static_cast<std::size_t>(idx) >= instance.params.size())
        throw Error(ErrorKind::Usage, fmt::format("parameter {}: the block has {}", idx, instance.params.size()));
}

/// A value that mdlCheckParameters refuses is taken back; the block stays as it was.
void Block::Impl::changeRunning(int idx, double value)
{
    sysobj::yrArray& param = instance.params[static_cast<std::size_t>(idx)];
    const double oldValue = std::exchange(param.value, value);
    std::optional<PendingError> error;
    try {
        error = run(CHECK_PARAMETERS, "mdlCheckParameters", callbacks().checkParameters);
    } catch (...) {
        param.value = oldValue;
        lifecycle.fail(Call::CheckParameters);
        throw;
    }
    if (error) {
        param.value = oldValue;
        throw Error(ErrorKind::Usage, error->text);
    }
    carryOut(Call::ProcessParameters, [&] {
        const char* const name = "mdlProcessParameters";
        throwIfStopped(instance, name, run(PROCESS_PARAMETERS, name, callbacks().processParameters));
    });
}

Block::Block(BlockSetup setup) : mImpl(std::make_unique<Impl>(setup.libraryPath))
{
    SysObjAdaptorSFun& S = mImpl->instance;
    for (const double value : setup.params)
        S.params.push_back({static_cast<int>(S.params.size()), value});
    S.isTunable.assign(setup.params.size(), false);
    S.paramLabels = std::move(setup.paramLabels);
    S.inputSignals = std::move(setup.inputs);
    S.outputSignals = std::move(setup.outputs);
    S.trace.setSink(std::move(setup.trace));
    mImpl->offerOrder = std::move(setup.offerOrder);
}

Block::~Block()
{
    try {
        if (mImpl->lifecycle.needsTerminate())
            terminate();
    } catch (...) {
        // Nobody is left to hear of it.
    }
}

bool Block::initializeSizes()
{
    return mImpl->carryOut(Call::InitializeSizes, [&] {
        SysObjAdaptorSFun& S = mImpl->instance;
        const char* const name = "mdlInitializeSizes";
        throwIfStopped(S, name, mImpl->run(INITIALIZE_SIZES, name, mImpl->callbacks().initializeSizes));
        if (!S.hasRegisteredParams || !S.hasInputNum || !S.hasOutputNum)
            throw Error(ErrorKind::Internal, "mdlInitializeSizes did not declare parameters, inputs and outputs");
    });
}

bool Block::checkParameters()
{
    return mImpl->setUp(Call::CheckParameters, CHECK_PARAMETERS, "mdlCheckParameters", mImpl->callbacks().checkParameters);
}

bool Block::initializeSampleTimes()
{
    return mImpl->setUp(Call::InitializeSampleTimes, SAMPLE_TIMES, "mdlInitializeSampleTimes",
                        mImpl->callbacks().initializeSampleTimes);
}

bool Block::propagate()
{
    return mImpl->carryOut(
        Call::Propagate, [&] { blockhost::propagate(mImpl->instance, mImpl->callbacks(), mImpl->offerOrder); });
}

bool Block::setWorkWidths()
{
    return mImpl->setUp(Call::SetWorkWidths, WORK_WIDTHS, "mdlSetWorkWidths", mImpl->callbacks().setWorkWidths);
}

bool Block::start()
{
    return mImpl->carryOut(Call::Start, [&] {
        allocateMemory(mImpl->instance);
        throwIfStopped(mImpl->instance, "mdlStart", mImpl->run(START, "mdlStart", mImpl->callbacks().start));
    });
}

void Block::prepare()
{
    const bool isPrepared = initializeSizes() && checkParameters() && initializeSampleTimes() && propagate() && setWorkWidths();
    if (!isPrepared)
        throw Error(ErrorKind::Usage, fmt::format("open called again (state: {}); a block is set up once, open another block",
                                                  stateName(mImpl->lifecycle.state())));
}

void Block::open()
{
    prepare();
    start();
}

bool Block::step()
{
    return mImpl->carryOut(Call::Outputs, [&] {
        mImpl->stepError.reset();
        mImpl->runSizeRules();
        if (auto error = mImpl->run(OUTPUTS, "mdlOutputs", mImpl->callbacks().outputs))
            mImpl->stepError = esttform::Message{std::move(error->id), std::move(error->text), 1};
    });
}

bool Block::terminate()
{
    return mImpl->carryOut(Call::Terminate, [&] {
        const auto error = mImpl->run(TERMINATE, "mdlTerminate", mImpl->callbacks().terminate);
        if (error)
            throw Error(ErrorKind::Usage, error->text);
    });
}

bool Block::describe(ir::Model& model, const ir::BlockLabels& labels)
{
    return mImpl->carryOut(Call::Describe, [&] {
        SysObjAdaptorSFun& S = mImpl->instance;
        if (S.hasVektCG == 0)
            throw Error(ErrorKind::Usage, "the block describes no code: it did not announce mdlVektCG");
        const char* const name = "mdlVektCG";
        const auto describeTo = [&](CGIR_Block_IF* blockInterface) { mImpl->callbacks().vektCG(&S, blockInterface); };
        const auto error = runCallback(S, CODE_GENERATION, name, [&] { ir::addBlock(model, S, labels, describeTo); });
        throwIfStopped(S, name, error);
    });
}

void Block::setInputSize(int portIdx, const Dims& size)
{
    Port* const port = portAt(mImpl->instance.inputs, portIdx);
    if (port == nullptr || mImpl->lifecycle.state() != State::Running)
        throw Error(ErrorKind::Usage, fmt::format("input port {}: current size set in state {}; expected a port of a "
                                                  "running block",
                                                  portIdx, stateName(mImpl->lifecycle.state())));
    const bool isVariable = port->mode == sysobj::DIMS_MODE_VARIABLE;
    bool isAdmitted = size.num() == port->dims.num();
    for (int dim = 0; isAdmitted && dim < size.num(); ++dim)
        isAdmitted = size.size(dim) >= 0 && size.size(dim) <= port->dims.size(dim)
                     && (isVariable || size.size(dim) == port->dims.size(dim));
    if (!isAdmitted)
        throw Error(ErrorKind::Usage, fmt::format("input port {}: got size {}, expected {}{}", portIdx, size.text(),
                                                  isVariable ? "at most " : "", port->dims.text()));
    port->current = size;
}

bool Block::setParam(int idx, double value)
{
    SysObjAdaptorSFun& S = mImpl->instance;
    const State state = mImpl->lifecycle.state();
    mImpl->requireParam(idx);
    const auto param = static_cast<std::size_t>(idx);
    if (state == State::Created) {
        S.params[param].value = value;
        return true;
    }
    if (!mImpl->lifecycle.admit(Call::ProcessParameters))
        return false;
    if (!S.isTunable[param]) {
        const std::string when = param < S.paramLabels.size() ? S.paramLabels[param].tunable : "no";
        throw Error(ErrorKind::Usage, fmt::format("{}: cannot change while the block runs ({}); open the block anew with it",
                                                  S.paramName(idx),
                                                  when == "no" || when.empty() ? "not tunable" : "tunable only " + when));
    }
    mImpl->changeRunning(idx, value);
    return true;
}

void Block::refuseCall(const std::string& function, int n)
{
    mImpl->instance.refusalOrders.push_back({function, n});
}

State Block::state() const noexcept
{
    return mImpl->lifecycle.state();
}

double Block::param(int idx) const
{
    mImpl->requireParam(idx);
    return mImpl->instance.params[static_cast<std::size_t>(idx)].value;
}

const std::optional<esttform::Message>& Block::stepError() const noexcept
{
    return mImpl->stepError;
}

bool Block::hasWarnings() const noexcept
{
    return mImpl->instance.warnings.entryNum() > 0;
}

std::vector<esttform::Message> Block::takeWarnings()
{
    WarningTable& table = mImpl->instance.warnings;
    std::vector<esttform::Message> messages;
    for (int i = 0; i < table.entryNum(); ++i) {
        const WarningTable::Entry& entry = table.entry(i);
        messages.push_back({entry.message.id(), messageText(entry.message), entry.count});
    }
    table.clear();
    return messages;
}

const std::vector<std::string>& Block::refusals() const noexcept
{
    return mImpl->instance.refusals;
}

void* Block::inputData(int port) const noexcept
{
    const Port* const found = portAt(mImpl->instance.inputs, port);
    return found != nullptr ? found->buffer.data() : nullptr;
}

const void* Block::outputData(int port) const noexcept
{
    const Port* const found = portAt(mImpl->instance.outputs, port);
    return found != nullptr ? found->buffer.data() : nullptr;
}

void Block::clearOutputs() noexcept
{
    for (const Port& port : mImpl->instance.outputs)
        if (port.buffer.isAllocated())
            std::memset(port.buffer.data(), 0, port.buffer.byteNum());
}

const SysObjAdaptorSFun& Block::instance() const noexcept
{
    return mImpl->instance;
}

}  // namespace blockhost
