#include "registering/vision.h"

#include "failure.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace esttform::app {

Vision& loadVision()
{
#ifdef ESTTFORM_VISION_MODULE
    // Beside the program, or where the program's other libraries are. It stays loaded, its objects with it.
    std::error_code ignored;
    const auto beside = std::filesystem::read_symlink("/proc/self/exe", ignored).replace_filename(ESTTFORM_VISION_MODULE);
    const bool isBeside = std::filesystem::exists(beside, ignored);
    void* const module = ::dlopen(isBeside ? beside.c_str() : ESTTFORM_VISION_MODULE, RTLD_NOW | RTLD_LOCAL);
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
