#include "output/output_folder.h"

#include "failure.h"
#include "number_text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>

namespace esttform::app {

namespace fs = std::filesystem;

namespace {

bool isPlainName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

/// A new hidden folder.
fs::path makeHidden(const fs::path& parent, const std::string& name, std::error_code& fault)
{
    for (int i = 0;; ++i) {
        fs::path folder = parent / fmt::format(".{}.{}.{}", name, ::getpid(), i);
        if (fs::create_directory(folder, fault) || fault)
            return folder;
    }
}

/// Names in a list of files. Only names of plain files of the folder itself count, whatever the list says.
std::vector<std::string> listedFiles(const fs::path& folder)
{
    std::vector<std::string> names;
    std::ifstream list(folder / OutputFolder::LIST_NAME);
    for (std::string name; std::getline(list, name);)
        if (isPlainName(name) && fs::is_regular_file(fs::symlink_status(folder / name)))
            names.push_back(name);
    return names;
}

/// Moves of files that can be taken back, the last one first.
class Moves {
public:
    void move(const fs::path& from, const fs::path& to, std::error_code& fault)
    {
        fs::rename(from, to, fault);
        if (!fault)
            mDone.emplace_back(from, to);
    }
    void takeBack() noexcept
    {
        std::error_code ignored;
        for (; !mDone.empty(); mDone.pop_back())
            fs::rename(mDone.back().second, mDone.back().first, ignored);
    }

private:
    std::vector<std::pair<fs::path, fs::path>> mDone;
};

}  // namespace

OutputFolder::OutputFolder(const std::string& path, bool isReplace) : mPath(path)
{
    if (path == "-")
        throw Failure("-: standard output is no folder; name one");
    checkTarget(isReplace);
    std::error_code fault;
    mTemporary = mIsThere ? makeHidden(mTarget, "new", fault) : makeHidden(mTarget.parent_path(), mTarget.filename().string(), fault);
    if (!fault)
        return;
    mTemporary.clear();
    if (fault == std::errc::no_such_file_or_directory)
        throw Failure(fmt::format("{}: cannot create the folder: {} is missing", mPath, mTarget.parent_path().string()));
    fail("create the folder", fault);
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

/// Finds out what is at the path, and whether files may be written there.
void OutputFolder::checkTarget(bool isReplace)
{
    std::error_code fault;
    mTarget = fs::weakly_canonical(mPath, fault);
    if (fault)
        fail("create the folder", fault);
    if (!mTarget.has_filename())
        mTarget = mTarget.parent_path();
    const fs::file_status status = fs::status(mTarget, fault);
    mIsThere = fs::exists(status);
    if (!mIsThere) {
        if (status.type() == fs::file_type::none)
            fail("read", fault);
        if (fs::is_symlink(fs::symlink_status(mTarget, fault)))
            throw Failure(fmt::format("{}: is a link to nothing; remove it, or create what it names", mPath));
        return;
    }
    if (!fs::is_directory(status))
        fail("create the folder", std::make_error_code(std::errc::file_exists));
    const bool isEmpty = fs::is_empty(mTarget, fault);
    if (fault)
        fail("read", fault);
    if (isEmpty)
        return;
    if (!isReplace)
        throw Failure(fmt::format("{}: the folder is not empty; choose another, or replace generated files by --force", mPath));
    if (!fs::is_regular_file(mTarget / LIST_NAME, fault))
        throw Failure(fmt::format("{}: the folder is not empty and has no {}, so nothing in it was generated; choose another",
                                  mPath, LIST_NAME));
}

void OutputFolder::writeFile(const std::string& name, std::string_view text)
{
    errno = 0;
    std::ofstream file(mTemporary / name, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file)
        throw Failure(fmt::format("{}/{}: cannot write: {}", mPath, name,
                                  std::error_code(errno != 0 ? errno : EIO, std::generic_category()).message()));
}

void OutputFolder::write(const std::string& name, std::string_view text)
{
    if (!isPlainName(name))
        throw Failure(fmt::format("{}: got a file {}, expected a name without a folder", mPath, inQuotes(name)),
                      ExitCode::OurFault);
    writeFile(name, text);
    mNames.push_back(name);
}

/// Replaces the files of the old list by the new ones.
void OutputFolder::moveIn()
{
    const std::vector<std::string> listed = listedFiles(mTarget);
    std::error_code fault;
    for (const std::string& name : mNames)
        if (std::find(listed.begin(), listed.end(), name) == listed.end() && fs::exists(fs::symlink_status(mTarget / name, fault)))
            throw Failure(fmt::format("{}/{}: was not generated and would be overwritten; move it away", mPath, name));
    const fs::path old = makeHidden(mTarget, "old", fault);
    Moves moves;
    for (std::size_t i = 0; i < listed.size() && !fault; ++i)
        moves.move(mTarget / listed[i], old / listed[i], fault);
    for (std::size_t i = 0; i < mNames.size() && !fault; ++i)
        moves.move(mTemporary / mNames[i], mTarget / mNames[i], fault);
    std::error_code ignored;
    if (fault) {
        moves.takeBack();
        fs::remove(old, ignored);
        fail("replace its files", fault);
    }
    fs::remove_all(old, ignored);
}

void OutputFolder::commit()
{
    mNames.emplace_back(LIST_NAME);
    writeFile(LIST_NAME, fmt::format("{}\n", fmt::join(mNames, "\n")));
    if (mIsThere)
        return moveIn();
    std::error_code fault;
    fs::rename(mTemporary, mTarget, fault);
    if (fault)
        fail("create the folder", fault);
    mTemporary.clear();
}

}  // namespace esttform::app
