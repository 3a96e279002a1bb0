// OutputFolder: a folder of generated files that appears complete or not at all, and of which nothing of the user's is lost.
// A new folder is written beside its place and takes its name when committed. Into a folder that is there already the files
// are moved one by one from a hidden folder inside it; what is not ours in it is never touched.
#pragma once

#include "interruption.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace esttform::app {

class OutputFolder {
public:
    /// Names the files that the folder was written with, one a line; files are replaced only in such a folder.
    static constexpr const char* LIST_NAME = "generated_files.txt";

    /// Opens a folder that is not there yet or is empty; a link to one is followed.
    ///
    /// @param path       kept as given for messages
    /// @param isReplace  replace the files of a folder that an OutputFolder wrote before, see commit
    /// @throws Failure  the folder above is missing or not writable, the path is no folder, or it holds files and must not
    ///                  be written to
    OutputFolder(const std::string& path, bool isReplace);
    /// Removes what was not committed.
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    /// Writes a file.
    ///
    /// @param name  without a folder
    /// @throws Failure  the disk is full or writing fails otherwise
    void write(const std::string& name, std::string_view text);
    /// Puts the files where they belong. In a folder that was there the files of its old list go; all else in it, a build
    /// tree for example, stays as it is. When a file cannot be moved the old ones are put back.
    ///
    /// @throws Failure  as write; also a file that is not of the list has the name of a new one
    void commit();

private:
    void checkTarget(bool isReplace);
    void writeFile(const std::string& name, std::string_view text);
    void moveIn();
    [[noreturn]] void fail(const char* action, const std::error_code& reason) const;

    InterruptionHold mHold;            ///< writing is short: a signal waits until the folder is there or gone
    std::string mPath;
    std::filesystem::path mTarget;     ///< mPath with links followed
    bool mIsThere = false;             ///< the folder was there before
    std::filesystem::path mTemporary;  ///< where files are written first; empty when committed
    std::vector<std::string> mNames;
};

}  // namespace esttform::app
