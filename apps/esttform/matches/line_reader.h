// LineReader: the lines of a text file or of standard input, one by one and with their numbers.
// Memory is bounded by one line; a line arrives as soon as it is complete, so that a pipe can be followed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace esttform::app {

class LineReader {
public:
    /// Bytes of the longest line that is admitted.
    static constexpr std::size_t LINE_MAX_SIZE = 1000 * 1000;

    /// Opens a file; "-" is standard input.
    ///
    /// @param isFollowed  at the end of the file wait for more, for ever
    /// @throws Failure  the file cannot be opened
    explicit LineReader(const std::string& path, bool isFollowed = false);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line without its end (LF or CRLF) and without a UTF-8 byte-order mark in front of the first.
    ///
    /// @param line  out, valid until the next call
    /// @return false at the end of the file
    /// @throws Failure  reading fails, the line is longer than LINE_MAX_SIZE, or it holds a zero byte
    bool next(std::string_view& line);

    /// Number of the last line, counted from 1; 0 before the first.
    std::int64_t lineNo() const noexcept { return mLineNo; }
    /// The file's name as messages show it.
    const std::string& name() const noexcept { return mName; }
    /// "NAME:LINE", the place of the last line.
    std::string place() const;

private:
    bool fill();

    std::string mName;
    int mFile = -1;
    bool mIsFollowed;
    std::int64_t mLineNo = 0;
    std::string mBuffer;          ///< bytes read and not yet handed out, from mBegin on
    std::size_t mBegin = 0;
    bool mIsAtEnd = false;
};

}  // namespace esttform::app
