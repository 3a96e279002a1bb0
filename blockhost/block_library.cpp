#include "block_library.h"

#include <dlfcn.h>
#include <elf.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>

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

/// Refuses a file that ends before what its program headers say is to be mapped: to touch the missing part would end the
/// process. Whatever is no 64-bit library of this byte order is left for the loader to judge.
void throwIfCutOff(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff byteNum = file.tellg();
    const auto read = [&](std::uint64_t offset, auto& record) {
        file.seekg(static_cast<std::streamoff>(offset));
        file.read(reinterpret_cast<char*>(&record), sizeof record);
        return file.good();
    };
    constexpr int BYTE_ORDER_HERE = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? ELFDATA2LSB : ELFDATA2MSB;
    Elf64_Ehdr header{};
    if (!read(0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64
        || header.e_ident[EI_DATA] != BYTE_ORDER_HERE || header.e_phentsize != sizeof(Elf64_Phdr))
        return;
    std::uint64_t neededNum = header.e_phoff + header.e_phnum * sizeof(Elf64_Phdr);
    Elf64_Phdr segment{};
    for (std::uint64_t i = 0; i < header.e_phnum && read(header.e_phoff + i * sizeof segment, segment); ++i)
        if (segment.p_type == PT_LOAD)
            neededNum = std::max(neededNum, segment.p_offset + segment.p_filesz);
    if (static_cast<std::uint64_t>(byteNum) < neededNum)
        throwCannotLoad(path, "file is cut off: " + std::to_string(byteNum) + " bytes, its contents need "
                                  + std::to_string(neededNum));
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
    throwIfCutOff(file);
    mHandle.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
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
