#include "output/output_file.h"

#include "failure.h"
#include "interruption.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

namespace esttform::app {

namespace {

constexpr std::size_t BUFFER_SIZE = 64 * 1024;
constexpr mode_t NEW_FILE_MODE = 0666;

std::filesystem::path resolved(const std::string& path)
{
    std::error_code fault;
    const std::filesystem::path target = std::filesystem::weakly_canonical(path, fault);
    return fault ? std::filesystem::path(path) : target;
}

mode_t currentUmask()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

}  // namespace

OutputFile* OutputFile::sFirst = nullptr;

OutputFile::OutputFile(const std::string& path, Unfinished unfinished) : mUnfinished(unfinished), mPath(path)
{
    const InterruptionHold hold;
    if (path == "-") {
        mPath = "standard output";
        mFile = STDOUT_FILENO;
    } else {
        openFile();
    }
    mNext = std::exchange(sFirst, this);
}

void OutputFile::openFile()
{
    if (mPath.empty())
        throw Failure("got an empty name for a file to write to");
    mTarget = resolved(mPath).string();
    struct stat status {};
    const bool isThere = ::stat(mTarget.c_str(), &status) == 0;
    if (isThere && S_ISDIR(status.st_mode))
        fail("write", EISDIR);
    if (isThere && !S_ISREG(status.st_mode)) {
        mFile = ::open(mTarget.c_str(), O_WRONLY | O_CLOEXEC);
    } else if (mUnfinished == Unfinished::InPlace) {
        mFile = ::open(mTarget.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, NEW_FILE_MODE);
    } else {
        if (isThere && ::access(mTarget.c_str(), W_OK) != 0)
            fail("write", errno);
        const std::filesystem::path target(mTarget);
        mTemporary = (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();
        mFile = ::mkostemp(mTemporary.data(), O_CLOEXEC);
        if (mFile < 0)
            mTemporary.clear();
        else
            ::fchmod(mFile, isThere ? status.st_mode & 07777 : NEW_FILE_MODE & ~currentUmask());
    }
    if (mFile < 0)
        fail("create", errno);
}

OutputFile::~OutputFile()
{
    const InterruptionHold hold;
    OutputFile** link = &sFirst;
    while (*link != this)
        link = &(*link)->mNext;
    *link = mNext;
    if (!mTemporary.empty())
        ::unlink(mTemporary.c_str());
    if (mFile >= 0 && mFile != STDOUT_FILENO)
        ::close(mFile);
}

void OutputFile::fail(const char* action, int errorCode) const
{
    if (mFile == STDOUT_FILENO && errorCode == EPIPE)
        throw ClosedPipe();
    throw Failure(fmt::format("{}: cannot {}: {}", mPath, action, std::strerror(errorCode)));
}

void OutputFile::write(std::string_view text)
{
    const InterruptionHold hold;
    mBuffer += text;
    mHasText = true;
    if (mBuffer.size() >= BUFFER_SIZE)
        flush();
}

/// @return false if writing failed, with the reason in errno
bool OutputFile::writeBuffer() noexcept
{
    std::size_t doneNum = 0;
    while (doneNum < mBuffer.size()) {
        const ssize_t written = ::write(mFile, mBuffer.data() + doneNum, mBuffer.size() - doneNum);
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            doneNum += static_cast<std::size_t>(written);
        if (isInterrupted() && mTemporary.empty())
            break;                                       // a reader that does not read must not keep the program
    }
    mBuffer.clear();
    return true;
}

void OutputFile::flush()
{
    const InterruptionHold hold;
    if (!writeBuffer())
        fail("write", errno);
}

void OutputFile::commit()
{
    const InterruptionHold hold;
    flush();
    if (mTemporary.empty())
        return;
    if (::close(std::exchange(mFile, -1)) != 0)
        fail("write", errno);
    if (std::rename(mTemporary.c_str(), mTarget.c_str()) != 0)
        fail("create", errno);
    mTemporary.clear();
}

/// As commit, or as the destructor, with what a signal's handler may do.
void OutputFile::finish() noexcept
{
    const bool isKept = mUnfinished == Unfinished::Keep && mHasText && writeBuffer() && ::close(mFile) == 0;
    if (!isKept || ::rename(mTemporary.c_str(), mTarget.c_str()) != 0)
        ::unlink(mTemporary.c_str());
}

void OutputFile::finishAll() noexcept
{
    for (OutputFile* file = sFirst; file != nullptr; file = file->mNext)
        if (!file->mTemporary.empty())
            file->finish();
    for (OutputFile* file = sFirst; file != nullptr; file = file->mNext)
        if (file->mTemporary.empty() && file->mFile >= 0)
            file->writeBuffer();
}

}  // namespace esttform::app
