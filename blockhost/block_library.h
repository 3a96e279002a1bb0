// BlockLibrary: a block's shared library, loaded from a path, with its eighteen callbacks resolved.
// Loaded with immediate binding and local symbol scope; unloaded when the last instance of the block is gone.
#pragma once

#include "estimator.h"
#include "host_api.h"

#include <memory>
#include <string>

namespace blockhost {

/// Addresses of a block's entry points.
struct Callbacks {
    decltype(&::mdlInitializeSizes) initializeSizes = nullptr;
    decltype(&::mdlCheckParameters) checkParameters = nullptr;
    decltype(&::mdlInitializeSampleTimes) initializeSampleTimes = nullptr;
    decltype(&::mdlSetInputPortDimensionInfo) setInputPortDimensionInfo = nullptr;
    decltype(&::mdlSetOutputPortDimensionInfo) setOutputPortDimensionInfo = nullptr;
    decltype(&::mdlSetDefaultPortDimensionInfo) setDefaultPortDimensionInfo = nullptr;
    decltype(&::mdlSetInputPortDimsMode) setInputPortDimsMode = nullptr;
    decltype(&::mdlSetInputPortFrameData) setInputPortFrameData = nullptr;
    decltype(&::mdlSetInputPortDataType) setInputPortDataType = nullptr;
    decltype(&::mdlSetOutputPortDataType) setOutputPortDataType = nullptr;
    decltype(&::mdlSetDefaultPortDataTypes) setDefaultPortDataTypes = nullptr;
    decltype(&::mdlSetWorkWidths) setWorkWidths = nullptr;
    decltype(&::mdlStart) start = nullptr;
    decltype(&::mdlOutputs) outputs = nullptr;
    decltype(&::mdlProcessParameters) processParameters = nullptr;
    decltype(&::mdlTerminate) terminate = nullptr;
    decltype(&::mdlVektCG) vektCG = nullptr;
    decltype(&::vobFunction) gateway = nullptr;
};

/// One use of a loaded library; the system's loader counts the uses.
class BlockLibrary {
public:
    /// @param path  file of the library; without a slash a file of the current folder, never searched for elsewhere
    /// @throws Error (Load) with the loader's own reason, the version of the host interface that the block was built for when
    ///     it is another than this host's, or the name of a callback that is missing
    explicit BlockLibrary(const std::string& path);

    const Callbacks& callbacks() const noexcept { return mCallbacks; }

private:
    struct Close {
        void operator()(void* handle) const noexcept;
    };
    std::unique_ptr<void, Close> mHandle;
    Callbacks mCallbacks;
};

}  // namespace blockhost
