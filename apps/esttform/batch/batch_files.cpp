#include "batch/batch_files.h"

#include "failure.h"

#include <fmt/format.h>
#include <glob.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

namespace esttform::app {

namespace fs = std::filesystem;

namespace {

bool isTable(const fs::path& path)
{
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension == ".csv" || extension == ".tsv";
}

std::vector<std::string> filesOfFolder(const std::string& folder)
{
    std::vector<std::string> files;
    std::error_code fault;
    for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end; entry.increment(fault)) {
        std::error_code ignored;
        const bool isHidden = entry->path().filename().native()[0] == '.';
        const bool isLost = entry->is_symlink(ignored) && !entry->exists(ignored);   // a link that leads nowhere is reported
        if (isTable(entry->path()) && !isHidden && (isLost || entry->is_regular_file(ignored)))
            files.push_back(entry->path().string());
    }
    if (fault)
        throw Failure(fmt::format("{}: cannot read the folder: {}", folder, fault.message()));
    if (files.empty())
        throw Failure(fmt::format("{}: no file in the folder, expected *.csv or *.tsv", folder));
    return files;
}

std::vector<std::string> filesOfPattern(const std::string& pattern)
{
    glob_t found{};
    const int fault = ::glob(pattern.c_str(), 0, nullptr, &found);
    std::vector<std::string> files(found.gl_pathv, found.gl_pathv + (fault == 0 ? found.gl_pathc : 0));
    ::globfree(&found);
    // A pipe that happens to have the name would be waited for; one that is named itself is meant.
    files.erase(std::remove_if(files.begin(), files.end(), [](const std::string& path) {
        std::error_code ignored;
        return fs::is_other(path, ignored);
    }), files.end());
    if (files.empty())
        throw Failure(fmt::format("{}: no file has such a name", pattern));
    return files;
}

/// True for the results of an earlier batch, which are no matches.
bool isOfBatch(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string start(9, '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return start.empty() || start == "file,seed" || start == "{\"file\":\"";
}

}  // namespace

std::vector<std::string> batchFiles(const std::vector<std::string>& arguments, const FileIdentity& output)
{
    std::vector<std::string> files;
    for (const std::string& argument : arguments) {
        std::error_code ignored;
        const bool isFolder = fs::is_directory(argument, ignored);
        const bool isPattern = argument.find_first_of("*?[") != std::string::npos && !fs::exists(argument, ignored);
        const bool isNamed = !isFolder && !isPattern;
        for (std::string& file : isNamed ? std::vector{argument} : isFolder ? filesOfFolder(argument) : filesOfPattern(argument))
            if (!output.isSameAsExisting(file))
                files.push_back(std::move(file));
            else if (isNamed || !isOfBatch(file))
                throw Failure(fmt::format("--output: {} is one of the files to read", file));
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

}  // namespace esttform::app
