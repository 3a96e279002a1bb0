#include "block_library.h"

#include "block_file.h"

#include <dlfcn.h>
#include <unistd.h>

namespace blockhost {

namespace {

[[noreturn]] void throwCannotLoad(const std::string& path, const std::string& reason)
{
    throw esttform::Error(esttform::ErrorKind::Load, path + ": cannot load: " + reason);
}

/// The loader's reason without the path that it usually begins with.
std::string loaderReason(const std::string& path)
{
    const char* const text = dlerror();
    std::string reason = text != nullptr ? text : "unknown reason";
    const std::string prefix = path + ": ";
    if (reason.rfind(prefix, 0) == 0)
        reason.erase(0, prefix.size());
    // The loader passes over a file of another machine as if it were not there.
    if (reason.rfind("cannot open shared object file: No such file", 0) == 0 && access(path.c_str(), F_OK) == 0)
        reason += "; the file is there: is it built for this machine?";
    return reason;
}

/// Refuses a file whose missing part would end the process when touched, and a block that expects another host.
void throwIfUnfit(const std::string& path)
{
    const BlockFile file = readBlockFile(path);
    if (file.isCutOff())
        throwCannotLoad(path, "file is cut off: " + std::to_string(file.byteNum) + " bytes, its contents need "
                                  + std::to_string(file.neededNum));
    for (const std::uint32_t version : file.interfaceVersions)
        if (version != sysobj::INTERFACE_VERSION)
            throwCannotLoad(path, "block is built for version " + std::to_string(version)
                                      + " of the host interface, this host has version "
                                      + std::to_string(sysobj::INTERFACE_VERSION) + "; compile the block again with the headers "
                                      + "of this host");
}

template <typename Function>
void resolve(void* handle, const std::string& path, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(handle, name));
    if (function == nullptr)
        throwCannotLoad(path, std::string("callback ") + name + " is missing");
}

}  // namespace

void BlockLibrary::Close::operator()(void* handle) const noexcept
{
    dlclose(handle);
}

BlockLibrary::BlockLibrary(const std::string& path)
{
    if (path.empty())
        throwCannotLoad("block", "no path was given");
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    mHandle.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD));
    if (!mHandle) {                                      // else another instance has it in use, and it was found fit
        throwIfUnfit(file);
        mHandle.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
    }
    if (!mHandle)
        throwCannotLoad(file, loaderReason(file));

    const auto find = [&](const char* name, auto& function) { resolve(mHandle.get(), file, name, function); };
    find("mdlInitializeSizes", mCallbacks.initializeSizes);
    find("mdlCheckParameters", mCallbacks.checkParameters);
    find("mdlInitializeSampleTimes", mCallbacks.initializeSampleTimes);
    find("mdlSetInputPortDimensionInfo", mCallbacks.setInputPortDimensionInfo);
    find("mdlSetOutputPortDimensionInfo", mCallbacks.setOutputPortDimensionInfo);
    find("mdlSetDefaultPortDimensionInfo", mCallbacks.setDefaultPortDimensionInfo);
    find("mdlSetInputPortDimsMode", mCallbacks.setInputPortDimsMode);
    find("mdlSetInputPortFrameData", mCallbacks.setInputPortFrameData);
    find("mdlSetInputPortDataType", mCallbacks.setInputPortDataType);
    find("mdlSetOutputPortDataType", mCallbacks.setOutputPortDataType);
    find("mdlSetDefaultPortDataTypes", mCallbacks.setDefaultPortDataTypes);
    find("mdlSetWorkWidths", mCallbacks.setWorkWidths);
    find("mdlStart", mCallbacks.start);
    find("mdlOutputs", mCallbacks.outputs);
    find("mdlProcessParameters", mCallbacks.processParameters);
    find("mdlTerminate", mCallbacks.terminate);
    find("mdlVektCG", mCallbacks.vektCG);
    find("vobFunction", mCallbacks.gateway);
}

}  // namespace blockhost
