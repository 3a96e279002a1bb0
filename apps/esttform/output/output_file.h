// OutputFile: standard output, or a file that appears complete or not at all.
// A file is written to a temporary beside it and takes its name when committed; one that others read meanwhile is written
// in place.
#pragma once

#include <string>
#include <string_view>

namespace esttform::app {

/// What becomes of a file when a signal ends the program before it is committed.
enum class Unfinished {
    Drop,  ///< it does not appear
    Keep,  ///< it appears with what was written, if anything was
    InPlace,  ///< it has been there from the start, with what was written so far
};

class OutputFile {
public:
    /// Opens the output; "-" is standard output. A pipe or device is written directly, a link is followed.
    ///
    /// @param path        kept as given for messages
    /// @param unfinished  Keep for files of which a part is worth having
    /// @throws Failure  the folder is missing or not writable, the path is a folder
    explicit OutputFile(const std::string& path, Unfinished unfinished = Unfinished::Drop);
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

    /// For watchInterruption: commits or removes every open file as its Unfinished says, then hands on what is buffered
    /// for other outputs. The caller's holds keep writes that belong together from being parted.
    static void finishAll() noexcept;

private:
    void openFile();
    bool writeBuffer() noexcept;
    void finish() noexcept;
    [[noreturn]] void fail(const char* action, int errorCode) const;

    static OutputFile* sFirst;   ///< of the list of all, for finishAll
    OutputFile* mNext = nullptr;
    Unfinished mUnfinished;
    bool mHasText = false;   ///< something was written
    std::string mPath;
    std::string mTarget;     ///< mPath with links followed
    std::string mTemporary;  ///< empty when written directly
    int mFile = -1;
    std::string mBuffer;
};

}  // namespace esttform::app
