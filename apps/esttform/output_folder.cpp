#include "output_folder.h"

#include "failure.h"
#include "number_text.h"
#include "output_file.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <set>

namespace esttform::app {

namespace fs = std::filesystem;

namespace {

bool isPlainName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

fs::path resolved(const std::string& path)
{
    std::error_code fault;
    fs::path target = fs::weakly_canonical(path, fault);
    if (fault)
        target = path;
    return target.has_filename() ? target : target.parent_path();
}

/// A new folder beside the target.
fs::path makeSibling(const fs::path& target, std::error_code& fault)
{
    for (int i = 0;; ++i) {
        fs::path folder = target.parent_path() / fmt::format(".{}.{}.{}", target.filename().string(), ::getpid(), i);
        if (fs::create_directory(folder, fault) || fault)
            return folder;
    }
}

}  // namespace

OutputFolder::OutputFolder(const std::string& path, bool isReplace) : mPath(path), mTarget(resolved(path))
{
    std::error_code fault;
    const fs::file_status status = fs::status(mTarget, fault);
    if (fs::exists(status)) {
        if (!fs::is_directory(status))
            fail("create the folder", std::make_error_code(std::errc::file_exists));
        if (fs::equivalent(mTarget, fs::current_path(fault), fault))
            throw Failure(fmt::format("{}: is the current folder, expected another one", mPath));
        const bool isEmpty = fs::is_empty(mTarget, fault);
        if (fault)
            fail("read", fault);
        if (!isEmpty && !isReplace)
            throw Failure(fmt::format("{}: the folder is not empty; choose another, or replace generated files by --force",
                                      mPath));
        if (!isEmpty && !fs::is_regular_file(mTarget / LIST_NAME))
            throw Failure(fmt::format("{}: the folder is not empty and has no {}, so nothing in it was generated; choose another",
                                      mPath, LIST_NAME));
    }
    mTemporary = makeSibling(mTarget, fault);
    if (fault)
        fail("create", fault);
}

OutputFolder::~OutputFolder()
{
    std::error_code ignored;
    if (!mTemporary.empty())
        fs::remove_all(mTemporary, ignored);
}

void OutputFolder::fail(const char* action, const std::error_code& reason) const
{
    throw Failure(fmt::format("{}: cannot {}: {}", mPath, action, reason.message()));
}

void OutputFolder::write(const std::string& name, std::string_view text)
{
    if (!isPlainName(name))
        throw Failure(fmt::format("{}: got a file {}, expected a name without a folder", mPath, inQuotes(name)),
                      ExitCode::OurFault);
    OutputFile file((mTemporary / name).string());
    file.write(text);
    file.commit();
    mNames.push_back(name);
}

/// Divides what the folder that is replaced holds into the files of its list and all else.
OutputFolder::Content OutputFolder::oldContent() const
{
    std::set<std::string> listed;
    std::ifstream list(mTarget / LIST_NAME);
    for (std::string name; std::getline(list, name);)
        listed.insert(name);
    Content content;
    for (const fs::directory_entry& entry : fs::directory_iterator(mTarget)) {
        const std::string name = entry.path().filename().string();
        const bool isOwn = listed.count(name) != 0 && fs::is_regular_file(entry.symlink_status());
        (isOwn ? content.own : content.foreign).push_back(name);
    }
    return content;
}

void OutputFolder::replace()
{
    const Content content = oldContent();
    for (const std::string& name : content.foreign)
        if (std::find(mNames.begin(), mNames.end(), name) != mNames.end())
            throw Failure(fmt::format("{}/{}: was not generated and would be overwritten; move it away", mPath, name));
    std::error_code fault, ignored;
    const fs::path old = makeSibling(mTarget, fault);
    if (!fault)
        fs::rename(mTarget, old, fault);                 // onto the empty folder
    if (fault) {
        fs::remove(old, ignored);
        fail("replace", fault);
    }
    fs::rename(mTemporary, mTarget, fault);
    if (fault) {
        fs::rename(old, mTarget, ignored);
        fail("replace", fault);
    }
    mTemporary.clear();
    for (const std::string& name : content.foreign) {
        fs::rename(old / name, mTarget / name, fault);
        if (fault)
            throw Failure(fmt::format("{}: cannot move {} from {}: {}", mPath, name, old.string(), fault.message()));
    }
    for (const std::string& name : content.own)
        fs::remove(old / name, ignored);
    fs::remove(old, ignored);                            // fails if somebody added a file meanwhile, which stays there
}

void OutputFolder::commit()
{
    mNames.emplace_back(LIST_NAME);
    std::string list;
    for (const std::string& name : mNames)
        list += name + "\n";
    OutputFile file((mTemporary / LIST_NAME).string());
    file.write(list);
    file.commit();

    std::error_code fault;
    if (fs::exists(mTarget) && !fs::is_empty(mTarget))
        return replace();
    fs::rename(mTemporary, mTarget, fault);
    if (fault)
        fail("create", fault);
    mTemporary.clear();
}

}  // namespace esttform::app
