// OutputFolder: a folder of generated files that appears complete or not at all, and of which nothing of the user's is lost.
// It is written beside its place under another name and takes its place when committed.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace esttform::app {

class OutputFolder {
public:
    /// Names the files that the folder was written with, one a line; only such a folder is ever replaced.
    static constexpr const char* LIST_NAME = "generated_files.txt";

    /// Opens a folder that is not there yet or is empty; a link to one is followed.
    ///
    /// @param path       kept as given for messages
    /// @param isReplace  replace a folder that an OutputFolder wrote before, see commit
    /// @throws Failure  the folder above is missing or not writable, the path is no folder, or it holds files and must not
    ///                  be replaced
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
    /// Gives the folder its name. Of a folder that is replaced the files of its list go; all else in it, a build tree for
    /// example, is moved to the new one.
    ///
    /// @throws Failure  as write; also a file that is not of the list has the name of a new one
    void commit();

private:
    struct Content {
        std::vector<std::string> own, foreign;
    };
    Content oldContent() const;
    void replace();
    [[noreturn]] void fail(const char* action, const std::error_code& reason) const;

    std::string mPath;
    std::filesystem::path mTarget;     ///< mPath with links followed
    std::filesystem::path mTemporary;  ///< empty when committed
    std::vector<std::string> mNames;
};

}  // namespace esttform::app
