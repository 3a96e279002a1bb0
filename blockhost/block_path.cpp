#include "block_path.h"

#include "estimator.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

namespace blockhost {

namespace {

/// Folder of the library that holds this function, with a slash at the end.
std::string ownFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&findBlock), &info) == 0 || info.dli_fname == nullptr)
        return "./";
    const std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

}  // namespace

std::string findBlock(const std::string& requestedPath)
{
    if (!requestedPath.empty())
        return requestedPath;
    if (const char* const path = std::getenv("ESTTFORM_BLOCK"); path != nullptr && *path != '\0')
        return path;
    const std::string folder = ownFolder();
    for (const char* const name : {"szelesttform.so", "esttform/szelesttform.so"})
        if (access((folder + name).c_str(), F_OK) == 0)
            return folder + name;
    throw esttform::Error(esttform::ErrorKind::Load,
                          "szelesttform.so: cannot load: neither in " + folder + " nor in " + folder
                              + "esttform/; name the block or set ESTTFORM_BLOCK");
}

}  // namespace blockhost
