#include "matches/line_reader.h"

#include "failure.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace esttform::app {

namespace {

constexpr std::size_t BLOCK_SIZE = 64 * 1024;
/// Between two looks at the end of a file that is followed.
constexpr useconds_t FOLLOW_MICROSECONDS = 50'000;
constexpr std::string_view UTF8_MARK = "\xef\xbb\xbf";

}  // namespace

LineReader::LineReader(const std::string& path, bool isFollowed) : mName(path), mIsFollowed(isFollowed)
{
    if (path == "-") {
        mName = "standard input";
        mFile = STDIN_FILENO;
        return;
    }
    mFile = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (mFile < 0)
        throw Failure(fmt::format("{}: cannot open: {}", mName, std::strerror(errno)));
}

LineReader::~LineReader()
{
    if (mFile > STDIN_FILENO)
        ::close(mFile);
}

std::string LineReader::place() const
{
    return fmt::format("{}:{}", mName, mLineNo);
}

/// Appends what the file has ready, at most one block. @return false at the end of a file that is not followed
bool LineReader::fill()
{
    mBuffer.erase(0, mBegin);
    mBegin = 0;
    const std::size_t oldSize = mBuffer.size();
    mBuffer.resize(oldSize + BLOCK_SIZE);
    ssize_t got = 0;
    do
        got = ::read(mFile, mBuffer.data() + oldSize, BLOCK_SIZE);
    while ((got < 0 && errno == EINTR) || (got == 0 && mIsFollowed && ::usleep(FOLLOW_MICROSECONDS) <= 0));
    if (got < 0)
        throw Failure(fmt::format("{}: cannot read: {}", mName, std::strerror(errno)));
    mBuffer.resize(oldSize + static_cast<std::size_t>(got));
    return got > 0;
}

bool LineReader::next(std::string_view& line)
{
    ++mLineNo;
    std::size_t searchedNum = 0;
    std::size_t end = std::string::npos;
    while ((end = mBuffer.find('\n', mBegin + searchedNum)) == std::string::npos && !mIsAtEnd) {
        searchedNum = mBuffer.size() - mBegin;
        if (searchedNum > LINE_MAX_SIZE)
            break;
        mIsAtEnd = !fill();
    }
    if (end == std::string::npos)
        end = mBuffer.size();
    if (end - mBegin > LINE_MAX_SIZE)
        throw Failure(fmt::format("{}: line longer than {} bytes, expected a row of numbers", place(), LINE_MAX_SIZE));

    line = std::string_view(mBuffer).substr(mBegin, end - mBegin);
    const bool isLast = end == mBuffer.size();
    mBegin = std::min(end + 1, mBuffer.size());
    if (isLast && line.empty()) {
        --mLineNo;
        return false;
    }
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (mLineNo == 1 && line.substr(0, UTF8_MARK.size()) == UTF8_MARK)
        line.remove_prefix(UTF8_MARK.size());
    if (line.find('\0') != std::string_view::npos)
        throw Failure(fmt::format("{}: zero byte at column {}, expected text in UTF-8 or ASCII", place(),
                                  line.find('\0') + 1));
    return true;
}

}  // namespace esttform::app
