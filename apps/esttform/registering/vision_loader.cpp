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
    // Beside the program, or where it is installed. It stays loaded, its objects with it.
    std::error_code ignored;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
    auto path = folder / ESTTFORM_VISION_MODULE;
    if (!std::filesystem::exists(path, ignored))
        path = folder / ESTTFORM_MODULE_PATH / ESTTFORM_VISION_MODULE;
    if (!std::filesystem::exists(path, ignored))
        throw Failure(fmt::format("register: {}: no such file; install the package esttform-vision",
                                  path.lexically_normal().native()));
    void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
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
