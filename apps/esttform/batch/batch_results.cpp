#include "batch/batch_results.h"

#include "batch/batch_files.h"
#include "batch/batch_seed.h"
#include "failure.h"
#include "interruption.h"
#include "number_text.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace esttform::app {

namespace {

constexpr mode_t NEW_FILE_MODE = 0666;

}  // namespace

BatchResults::BatchResults(const std::string& path, const BatchFormat& format, bool isResume,
                           const std::vector<std::string>& files, std::uint32_t seed)
    : mPath(path == "-" ? "standard output" : path), mFile(path == "-" ? STDOUT_FILENO : -1)
{
    if (path != "-") {
        mFile = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, NEW_FILE_MODE);
        if (mFile < 0)
            fail("write", errno);
        struct stat status {};
        const bool isFile = ::fstat(mFile, &status) == 0 && S_ISREG(status.st_mode);
        try {
            if (isResume && isFile)
                keep(format, files, seed);
            mIsFile = isFile;
            if (isFile && (::ftruncate(mFile, mSize) != 0 || ::lseek(mFile, mSize, SEEK_SET) < 0))
                fail("write", errno);
        } catch (...) {
            ::close(mFile);
            throw;
        }
    }
    if (mSize == 0)
        append(format.header());
    flush();
}

BatchResults::~BatchResults()
{
    if (mFile != STDOUT_FILENO)
        ::close(mFile);
}

void BatchResults::fail(const char* action, int errorCode) const
{
    if (mFile == STDOUT_FILENO && errorCode == EPIPE)
        throw ClosedPipe();
    throw Failure(fmt::format("{}: cannot {}: {}", mPath, action, std::strerror(errorCode)));
}

/// Counts the complete lines of old results and checks that this batch could have written them.
void BatchResults::keep(const BatchFormat& format, const std::vector<std::string>& files, std::uint32_t seed)
{
    std::ifstream old(mPath, std::ios::binary);
    if (!old)
        fail("read", errno);
    std::int64_t lineNo = 0;
    std::string header = format.header(), name;
    for (std::string line; std::getline(old, line) && !old.eof(); mSize += static_cast<std::int64_t>(line.size()) + 1) {
        ++lineNo;
        if (!header.empty()) {
            if (line + "\n" != header)
                throw Failure(fmt::format("{}:{}: other columns than these settings give; --resume cannot go on with it",
                                          mPath, lineNo));
            header.clear();
            continue;
        }
        std::uint32_t lineSeed = 0;
        BatchOutcome outcome{};
        const auto idx = mKept.sum();
        if (!format.parse(line, name, lineSeed, outcome))
            throw Failure(fmt::format("{}:{}: no result of a batch with these settings; --resume cannot go on with it", mPath, lineNo));
        const bool isMore = idx >= static_cast<std::int64_t>(files.size());
        const std::string expected = isMore ? "" : validText(files[static_cast<std::size_t>(idx)]);
        if (isMore || name != expected)
            throw Failure(fmt::format("{}:{}: result of \"{}\", expected {}; --resume needs the same files", mPath, lineNo,
                                      name, isMore ? "no more" : "\"" + expected + "\""));
        if (lineSeed != batchSeed(seed, idx))
            throw Failure(fmt::format("{}:{}: seed {}, expected {}; --resume needs the same --seed", mPath, lineNo, lineSeed,
                                      batchSeed(seed, idx)));
        mKept.add(outcome);
    }
}

void BatchResults::flush()
{
    std::size_t doneNum = 0;
    while (doneNum < mLines.size()) {
        const ssize_t written = ::write(mFile, mLines.data() + doneNum, mLines.size() - doneNum);
        if (written < 0 && errno != EINTR) {
            const int errorCode = errno;
            mLines.resize(doneNum);                      // whole lines of it stay
            mSize += static_cast<std::int64_t>(mLines.rfind('\n') + 1);
            if (doneNum > 0 && mIsFile && ::ftruncate(mFile, mSize) != 0)
                fail("write", errno);
            fail("write", errorCode);
        }
        if (written < 0 && isInterrupted())
            return;                                      // a reader that does not read must not keep the program
        if (written > 0)
            doneNum += static_cast<std::size_t>(written);
    }
    mSize += static_cast<std::int64_t>(mLines.size());
    mLines.clear();
}

}  // namespace esttform::app
