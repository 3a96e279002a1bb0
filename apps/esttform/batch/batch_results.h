// BatchResults: the results of a batch, appended line by line, so that they outlive a sudden end and a later run goes on.
#pragma once

#include "batch/batch_entry.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// How many files ended how.
struct BatchCounts {
    std::int64_t foundNum = 0, notFoundNum = 0, badNum = 0;

    void add(BatchOutcome outcome) noexcept
    {
        ++(outcome == BatchOutcome::Found ? foundNum : outcome == BatchOutcome::NotFound ? notFoundNum : badNum);
    }
    std::int64_t sum() const noexcept { return foundNum + notFoundNum + badNum; }
};

class BatchResults {
public:
    /// Opens the results; "-" is standard output. New results begin with the format's header; old ones are overwritten.
    /// With isResume the complete lines of old results stay; a last line that was not finished is dropped.
    ///
    /// @param files, seed  of the batch: kept lines must be those of its first files
    /// @throws Failure  the file cannot be written or read, or holds something else
    BatchResults(const std::string& path, const BatchFormat& format, bool isResume, const std::vector<std::string>& files,
                 std::uint32_t seed);
    ~BatchResults();
    BatchResults(const BatchResults&) = delete;
    BatchResults& operator=(const BatchResults&) = delete;

    /// Appends a line; it is in the file after flush.
    void append(const std::string& line) { mLines += line; }
    /// Writes the lines.
    ///
    /// @throws Failure     the disk is full or writing fails otherwise; no part of a line stays in a file
    /// @throws ClosedPipe  the reader of standard output is gone
    void flush();

    /// Of the lines that were kept.
    const BatchCounts& keptCounts() const noexcept { return mKept; }

private:
    void keep(const BatchFormat& format, const std::vector<std::string>& files, std::uint32_t seed);
    [[noreturn]] void fail(const char* action, int errorCode) const;

    std::string mPath;
    int mFile = -1;
    std::string mLines;    ///< not written yet
    bool mIsFile = false;  ///< and no pipe, device or standard output: it may be cut
    std::int64_t mSize = 0;   ///< of the complete lines, in bytes
    BatchCounts mKept;
};

}  // namespace esttform::app
