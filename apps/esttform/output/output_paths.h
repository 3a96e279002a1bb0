// Which paths may be written to: no file is written twice, and none that is read is replaced.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace esttform::app {

/// The file that a path names, links followed, whether it is there or will be; "-" is a file of its own.
class FileIdentity {
public:
    explicit FileIdentity(const std::string& path);

    /// Devices and pipes may be named twice: writing to them replaces nothing.
    bool isSameAs(const FileIdentity& other) const;
    /// The same for a file of which only its being there matters; asks the system once.
    bool isSameAsExisting(const std::string& path) const noexcept;

private:
    bool mIsThere = false, mIsFile = false;
    dev_t mDevice = 0;
    ino_t mNode = 0;
    std::string mPath;  ///< absolute, without links and dots
};

/// An option and the path given with it; an empty path is not given.
using NamedPath = std::pair<const char*, std::string>;

/// Refuses two options that write to one file, and one that writes to a file which is read.
///
/// @throws Failure  naming both options
void refuseWrongOutputs(const std::vector<NamedPath>& outputs, const std::vector<NamedPath>& inputs);

}  // namespace esttform::app
