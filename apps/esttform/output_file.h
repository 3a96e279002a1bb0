// OutputFile: standard output, or a file that appears complete or not at all.
// A file is written to a temporary beside it and takes its name when committed.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace esttform::app {

class OutputFile {
public:
    /// Opens the output; "-" is standard output. A pipe or device is written directly, a link is followed.
    ///
    /// @param path  kept as given for messages
    /// @throws Failure  the folder is missing or not writable, the path is a folder
    explicit OutputFile(const std::string& path);
    /// Removes what was not committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// @throws Failure     the disk is full or writing fails otherwise
    /// @throws ClosedPipe  the reader of standard output is gone
    void write(std::string_view text);
    /// Hands on what is buffered, so that a reader sees it. Throws as write.
    void flush();
    /// Flushes, and gives a file its name: from now on it stays. Throws as write.
    void commit();

private:
    void openFile();
    [[noreturn]] void fail(const char* action, int errorCode) const;

    std::string mPath;
    std::string mTarget;     ///< mPath with links followed
    std::string mTemporary;  ///< empty when written directly
    int mFile = -1;
    std::string mBuffer;
};

/// True if both paths name one output.
bool isSameOutput(const std::string& path1, const std::string& path2);

/// Refuses two options that write to one output; empty paths are not given.
///
/// @throws Failure  naming both options
void refuseSameOutputs(const std::vector<std::pair<const char*, std::string>>& outputs);

}  // namespace esttform::app
