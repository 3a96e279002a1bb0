#include "host_call.h"

#include <fmt/format.h>

using namespace blockhost;

namespace sysobj {

extern "C" {

const void* bhGetInputPortSignal(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&]() -> const void* {
        const Port* const found = S->input(port, function);
        return found != nullptr ? found->data() : nullptr;
    };
    return hostAddress(S, function, WITH_BUFFERS, body, port);
}

void* bhGetOutputPortSignal(SysObjAdaptorSFun* S, int port) noexcept
{
    const char* const function = __func__;
    const auto body = [&]() -> void* {
        const Port* const found = S->output(port, function);
        return found != nullptr ? found->buffer.data() : nullptr;
    };
    return hostAddress(S, function, WITH_BUFFERS, body, port);
}

void* bhGetDWork(SysObjAdaptorSFun* S, int idx) noexcept
{
    const char* const function = __func__;
    const auto body = [&]() -> void* {
        const WorkVector* const vector = S->workVector(idx, function);
        return vector != nullptr ? vector->buffer.data() : nullptr;
    };
    return hostAddress(S, function, WITH_BUFFERS, body, idx);
}

int bhGetCurrentInputPortDimensions(SysObjAdaptorSFun* S, int port, int dim) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        const Port* const found = S->input(port, function);
        if (dim < 0)
            S->recordFault(fmt::format("{}: dimension {} does not exist", function, dim));
        return found != nullptr && dim >= 0 ? found->current.size(dim) : 0;
    };
    return hostCall(S, function, WITH_BUFFERS, body, port, dim);
}

void bhSetCurrentOutputPortDimensions(SysObjAdaptorSFun* S, int port, int dim, int size) noexcept
{
    const char* const function = __func__;
    const auto body = [&] {
        Port* const found = S->output(port, function);
        if (found == nullptr)
            return;
        const bool isInRange = dim >= 0 && size >= 0 && size <= found->dims.size(dim);
        if (!isInRange || (found->mode != DIMS_MODE_VARIABLE && size != found->dims.size(dim)))
            S->recordFault(fmt::format("{}: output port {}: current size {} along dimension {} does not fit {} ({})",
                                       function, port, size, dim, found->dims.text(), modeName(found->mode)));
        else if (dim < found->current.num())
            found->current.setSize(dim, size);
    };
    hostCall(S, function, SIZE_RULE | OUTPUTS, body, port, dim, size);
}

void* bhGetUserData(SysObjAdaptorSFun* S) noexcept
{
    return hostCall<PointerText>(S, __func__, ANY_CALLBACK, [&] { return S->userData; });
}

void bhSetUserData(SysObjAdaptorSFun* S, void* userData) noexcept
{
    hostCall(
        S, __func__, ANY_CALLBACK, [&] { S->userData = userData; }, PointerText{userData});
}

const char* bhGetErrorStatus(SysObjAdaptorSFun* S) noexcept
{
    return hostCall(S, __func__, ANY_CALLBACK,
                    [&]() -> const char* { return S->pendingError ? S->pendingError->text.c_str() : nullptr; });
}

}  // extern "C"

}  // namespace sysobj
