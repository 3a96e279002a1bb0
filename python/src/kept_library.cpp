#include "kept_library.h"

#include "blockhost/block_path.h"

#include <dlfcn.h>

#include <set>

namespace esttform::python {

void keepLibrary(const std::string& requestedPath)
{
    static std::set<std::string> kept;
    const std::string path = blockhost::findBlock(requestedPath);
    if (kept.insert(path).second)
        dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);        // one more use, which is never given back
}

}  // namespace esttform::python
