#include "propagation.h"

#include "callback_runner.h"
#include "data_types.h"

#include <fmt/format.h>

namespace blockhost {

namespace {

using sysobj::DIMS_MODE_FIXED;
using sysobj::DIMS_MODE_VARIABLE;

constexpr Attribute ATTRIBUTES[] = {Attribute::Size, Attribute::DataType, Attribute::Mode, Attribute::Frame};

Port* portOf(sysobj::SysObjAdaptorSFun& S, const Offer& offer) noexcept
{
    std::vector<Port>& ports = offer.direction == Direction::In ? S.inputs : S.outputs;
    const bool isInRange = offer.port >= 0 && static_cast<std::size_t>(offer.port) < ports.size();
    return isInRange ? &ports[static_cast<std::size_t>(offer.port)] : nullptr;
}

bool isOpen(const Port& port, Attribute attribute) noexcept
{
    switch (attribute) {
    case Attribute::Size: return !port.dims.isKnown();
    case Attribute::DataType: return port.typeId == sysobj::DT_UNSET;
    case Attribute::Mode: return port.mode == sysobj::DIMS_MODE_UNSET;
    default: return port.frameData == -1;
    }
}

/// What the connected signal has, for messages; empty when it leaves the attribute open.
std::string connectedText(const Signal& signal, Attribute attribute)
{
    if (attribute == Attribute::Size && signal.dims)
        return signal.dims->text();
    if (attribute == Attribute::DataType && signal.typeId)
        return typeName(*signal.typeId);
    if (attribute == Attribute::Mode && signal.mode)
        return modeName(*signal.mode);
    return "";
}

/// A port's mode, else that of the connected signal, else unset.
int modeOf(const Port& port) noexcept
{
    return port.mode != sysobj::DIMS_MODE_UNSET ? port.mode : port.signal.mode.value_or(sysobj::DIMS_MODE_UNSET);
}

/// The first two inputs whose modes contradict each other, which keeps a block from settling any; empty when none do.
std::string contradictingModes(const std::vector<Port>& inputs)
{
    int first = -1;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const int mode = modeOf(inputs[i]);
        if (mode == sysobj::DIMS_MODE_UNSET)
            continue;
        if (first < 0)
            first = static_cast<int>(i);
        else if (const int other = modeOf(inputs[static_cast<std::size_t>(first)]); other != mode)
            return fmt::format("input port {} is {}, input port {} is {}; both must have one mode", first, modeName(other), i,
                               modeName(mode));
    }
    return "";
}

/// True when a settled attribute is not what the connected signal has.
bool differs(const Port& port, Attribute attribute) noexcept
{
    const Signal& signal = port.signal;
    switch (attribute) {
    case Attribute::Size: return signal.dims && !port.dims.agreesWith(*signal.dims);
    case Attribute::DataType: return signal.typeId && port.typeId != *signal.typeId;
    case Attribute::Mode: return signal.mode && port.mode != *signal.mode;
    default: return false;
    }
}

/// The drivers of one propagation.
class Propagation {
public:
    Propagation(sysobj::SysObjAdaptorSFun& S, const Callbacks& callbacks, const std::vector<Offer>& order)
        : mInstance(S), mCallbacks(callbacks), mOffers(order)
    {
        for (const Attribute attribute : ATTRIBUTES)
            for (const Direction direction : {Direction::In, Direction::Out})
                for (int port = 0; portOf(S, {direction, port, attribute}) != nullptr; ++port)
                    mOffers.push_back({direction, port, attribute});
    }

    void run()
    {
        // Every pass but the last of each loop settles at least one attribute, and none is ever unsettled.
        for (int before = -1; before != openNum();) {
            before = openNum();
            for (int last = -1; last != openNum();) {
                last = openNum();
                for (const Offer& offer : mOffers)
                    makeOffer(offer);
                throwIfStopped(mInstance, "propagation", std::nullopt);
            }
            if (openNum() > 0)
                offerDefaults();
        }
        check();
    }

private:
    /// Runs one callback and stops at an error that it reports. A refusal waits for the end of the pass: another port's
    /// offer may lead the block to say in its own words what does not fit.
    template <typename Invoke, typename... Shown>
    void call(const char* name, Invoke invoke, const Shown&... shown)
    {
        if (const auto error = runCallback(mInstance, PROPAGATION, name, invoke, shown...))
            throw esttform::Error(esttform::ErrorKind::Usage, error->text);
    }

    int openNum() const noexcept
    {
        int num = 0;
        for (const std::vector<Port>* const ports : {&mInstance.inputs, &mInstance.outputs})
            for (const Port& port : *ports)
                for (const Attribute attribute : ATTRIBUTES)
                    num += isOpen(port, attribute) ? 1 : 0;
        return num;
    }

    bool anyOpen(Attribute attribute) const noexcept
    {
        for (const std::vector<Port>* const ports : {&mInstance.inputs, &mInstance.outputs})
            for (const Port& port : *ports)
                if (isOpen(port, attribute))
                    return true;
        return false;
    }

    /// Offers what is connected, if the port has something else or nothing yet.
    void makeOffer(const Offer& offer)
    {
        Port* const port = portOf(mInstance, offer);
        if (port == nullptr || (!isOpen(*port, offer.attribute) && !differs(*port, offer.attribute)))
            return;
        switch (offer.attribute) {
        case Attribute::Size: return offerSize(offer, port->signal);
        case Attribute::DataType: return offerType(offer, port->signal);
        case Attribute::Mode: return offerMode(offer, *port);
        case Attribute::Frame: return offerFrame(offer, *port);
        }
    }

    void offerSize(const Offer& offer, const Signal& signal)
    {
        if (!signal.dims || !signal.dims->isKnown())
            return;
        const sysobj::DimsInfo_tag record = signal.dims->record();
        if (offer.direction == Direction::In)
            call("mdlSetInputPortDimensionInfo",
                 [&] { mCallbacks.setInputPortDimensionInfo(&mInstance, offer.port, &record); }, offer.port,
                 DimsText{&record});
        else
            call("mdlSetOutputPortDimensionInfo",
                 [&] { mCallbacks.setOutputPortDimensionInfo(&mInstance, offer.port, &record); }, offer.port,
                 DimsText{&record});
    }

    void offerType(const Offer& offer, const Signal& signal)
    {
        if (!signal.typeId)
            return;
        const int typeId = *signal.typeId;
        if (offer.direction == Direction::In)
            call("mdlSetInputPortDataType", [&] { mCallbacks.setInputPortDataType(&mInstance, offer.port, typeId); },
                 offer.port, TypeText{typeId});
        else
            call("mdlSetOutputPortDataType", [&] { mCallbacks.setOutputPortDataType(&mInstance, offer.port, typeId); },
                 offer.port, TypeText{typeId});
    }

    /// Inputs: through the block if it registered the callback, else the host sets the mode itself. Outputs have no offer.
    void offerMode(const Offer& offer, Port& port)
    {
        if (offer.direction == Direction::Out || !port.signal.mode)
            return;
        setInputMode(offer.port, port, *port.signal.mode);
    }

    void setInputMode(int portIdx, Port& port, int mode)
    {
        if (mInstance.setInputPortDimsMode == nullptr)
            port.mode = mode;
        else
            call("mdlSetInputPortDimsMode", [&] { mInstance.setInputPortDimsMode(&mInstance, portIdx, mode); }, portIdx,
                 ModeText{mode});
    }

    void offerFrame(const Offer& offer, Port& port)
    {
        const int frameData = port.signal.frameData;
        if (offer.direction == Direction::Out)
            port.frameData = frameData;
        else
            call("mdlSetInputPortFrameData", [&] { mCallbacks.setInputPortFrameData(&mInstance, offer.port, frameData); },
                 offer.port, frameData);
    }

    /// What nothing connected settles: the block's default sizes and types, the host's default mode.
    void offerDefaults()
    {
        if (anyOpen(Attribute::Size))
            call("mdlSetDefaultPortDimensionInfo", [&] { mCallbacks.setDefaultPortDimensionInfo(&mInstance); });
        if (anyOpen(Attribute::DataType))
            call("mdlSetDefaultPortDataTypes", [&] { mCallbacks.setDefaultPortDataTypes(&mInstance); });
        bool isAnyVariable = false;
        for (std::size_t i = 0; i < mInstance.inputs.size(); ++i) {
            Port& port = mInstance.inputs[i];
            if (port.mode == sysobj::DIMS_MODE_UNSET && !port.signal.mode)
                setInputMode(static_cast<int>(i), port, DIMS_MODE_FIXED);
            isAnyVariable = isAnyVariable || port.mode == DIMS_MODE_VARIABLE;
        }
        if (mInstance.setInputPortDimsMode == nullptr)
            for (Port& port : mInstance.outputs)
                if (port.mode == sysobj::DIMS_MODE_UNSET)
                    port.mode = isAnyVariable ? DIMS_MODE_VARIABLE : DIMS_MODE_FIXED;
        throwIfStopped(mInstance, "propagation", std::nullopt);
    }

    void check() const
    {
        constexpr const char* NAMES[] = {"size", "data type", "dimensions mode", "frame setting"};
        for (const Direction direction : {Direction::In, Direction::Out})
            for (int i = 0; const Port* const port = portOf(mInstance, {direction, i, Attribute::Size}); ++i)
                for (const Attribute attribute : ATTRIBUTES) {
                    const bool isStillOpen = isOpen(*port, attribute);
                    if (!isStillOpen && !differs(*port, attribute))
                        continue;
                    const std::string connected = connectedText(port->signal, attribute);
                    const std::string modes = attribute == Attribute::Mode ? contradictingModes(mInstance.inputs) : "";
                    throw esttform::Error(
                        esttform::ErrorKind::Usage,
                        fmt::format("{} port {}: {} {}; {}", direction == Direction::In ? "input" : "output", i,
                                    NAMES[static_cast<std::size_t>(attribute)],
                                    isStillOpen ? "is still open" : "is not that of the connected signal",
                                    !modes.empty()      ? modes
                                    : connected.empty() ? "connect a signal that has it"
                                                        : "the connected signal is " + connected));
                }
    }

    sysobj::SysObjAdaptorSFun& mInstance;
    const Callbacks& mCallbacks;
    std::vector<Offer> mOffers;
};

}  // namespace

void propagate(sysobj::SysObjAdaptorSFun& S, const Callbacks& callbacks, const std::vector<Offer>& order)
{
    Propagation(S, callbacks, order).run();
}

}  // namespace blockhost
