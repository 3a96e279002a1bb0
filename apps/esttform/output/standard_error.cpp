#include "output/standard_error.h"

#include <unistd.h>

#include <cerrno>

namespace esttform::app {

void writeToStandardError(std::string_view text) noexcept
{
    while (!text.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return;
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace esttform::app
