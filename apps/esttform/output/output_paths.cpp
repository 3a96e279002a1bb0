#include "output/output_paths.h"

#include "failure.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <filesystem>

namespace esttform::app {

namespace {

std::string absolutePath(const std::string& path)
{
    std::error_code fault;
    const auto absolute = std::filesystem::absolute(path, fault);
    const auto target = fault ? absolute : std::filesystem::weakly_canonical(absolute, fault);
    return fault ? path : target.lexically_normal().string();
}

}  // namespace

FileIdentity::FileIdentity(const std::string& path) : mPath(path == "-" ? path : absolutePath(path))
{
    struct stat status {};
    mIsThere = path != "-" && ::stat(path.c_str(), &status) == 0;
    mIsFile = mIsThere ? S_ISREG(status.st_mode) : true;
    mDevice = status.st_dev;
    mNode = status.st_ino;
}

bool FileIdentity::isSameAs(const FileIdentity& other) const
{
    if (!mIsFile || !other.mIsFile)
        return false;
    return mIsThere && other.mIsThere ? mDevice == other.mDevice && mNode == other.mNode : mPath == other.mPath;
}

bool FileIdentity::isSameAsExisting(const std::string& path) const noexcept
{
    struct stat status {};
    return mIsThere && mIsFile && ::stat(path.c_str(), &status) == 0 && mDevice == status.st_dev && mNode == status.st_ino;
}

void refuseWrongOutputs(const std::vector<NamedPath>& outputs, const std::vector<NamedPath>& inputs)
{
    std::vector<std::pair<const char*, FileIdentity>> earlier;
    for (const auto& [option, path] : outputs) {
        if (path.empty())
            continue;
        const FileIdentity output(path);
        for (const auto& [other, file] : earlier)
            if (output.isSameAs(file))
                throw Failure(fmt::format("{} and {}: both write to {}", other, option, path == "-" ? "standard output" : path));
        for (const auto& [input, inputPath] : inputs)
            if (path != "-" && !inputPath.empty() && inputPath != "-" && output.isSameAs(FileIdentity(inputPath)))
                throw Failure(fmt::format("{}: {} is read as {}; name another file", option, path, input));
        earlier.emplace_back(option, output);
    }
}

}  // namespace esttform::app
