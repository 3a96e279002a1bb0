// Running the program as a user would, and a folder for its files that goes away with the test.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// A fresh folder for the files of one test; removed with all it holds.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Path of a file in the folder.
    std::string path(const std::string& name) const { return (mPath / name).string(); }
    /// Writes a file. @return its path
    std::string write(const std::string& name, const std::string& text) const;
    /// Names of all that the folder holds, hidden files too, sorted.
    std::vector<std::string> names() const;

private:
    std::filesystem::path mPath;
};

/// Whole content of a file; fails the test if there is none.
std::string readFile(const std::string& path);

struct ProgramRun {
    int code = -1;        ///< exit code; 128 + n if signal n ended the program
    std::string out, err;
};

struct RunSetting {
    std::string input;                            ///< standard input
    std::vector<std::string> environment;         ///< further NAME=VALUE
    std::string outputDevice;                     ///< standard output goes there instead of into ProgramRun::out
    bool isOutputClosed = false;                  ///< nobody reads standard output
    std::function<void(pid_t)> meanwhile = {};    ///< called once while the program runs
};

/// Waits until a condition holds; fails the test if it does not in half a minute.
void waitUntil(const std::function<bool()>& condition);

/// Runs esttform with the arguments and waits for it.
ProgramRun runProgram(const std::vector<std::string>& arguments, const RunSetting& setting = {});

/// Matches under a known similarity: 60 % of `pairNum` rows are right, the rest wrong by far. Every row is different.
std::string similarityMatches(int pairNum);
