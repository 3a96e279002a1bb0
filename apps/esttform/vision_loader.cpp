#include "vision.h"

#include "failure.h"

#include <dlfcn.h>
#include <fmt/format.h>

namespace esttform::app {

Vision& loadVision()
{
#ifdef ESTTFORM_VISION_MODULE
    // No folder in the name: it lies where the program's other libraries do. It stays loaded, its objects with it.
    void* const module = ::dlopen(ESTTFORM_VISION_MODULE, RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        throw Failure(fmt::format("register: cannot load {}: {}", ESTTFORM_VISION_MODULE, ::dlerror()));
    const auto vision = reinterpret_cast<Vision* (*)()>(::dlsym(module, "esttformVision"));
    if (vision == nullptr)
        throw Failure(fmt::format("register: {} is of another version", ESTTFORM_VISION_MODULE), ExitCode::OurFault);
    return *vision();
#else
    throw Failure("register: this program was built without OpenCV; install the package libopencv-dev and build again");
#endif
}

}  // namespace esttform::app
