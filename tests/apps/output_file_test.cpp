// Files appear complete or not at all.
#include "output/output_file.h"
#include "output/output_paths.h"

#include "failure.h"
#include "program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>

namespace esttform::app {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

TEST(OutputFileTest, AppearsOnCommitOnly)
{
    const TempFolder folder;
    {
        OutputFile file(folder.path("out.txt"));
        file.write("complete");
        file.flush();
        EXPECT_FALSE(fs::exists(folder.path("out.txt")));
        file.commit();
    }
    EXPECT_EQ(readFile(folder.path("out.txt")), "complete");
    EXPECT_EQ(folder.names(), Names{"out.txt"});
}

TEST(OutputFileTest, LeavesTheOldFileWhenNotCommitted)
{
    const TempFolder folder;
    const std::string path = folder.write("out.txt", "old");
    {
        OutputFile file(path);
        file.write(std::string(1000000, 'x'));
    }
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(folder.names(), Names{"out.txt"});
}

TEST(OutputFileTest, KeepsLinksAndPermissions)
{
    const TempFolder folder;
    const std::string path = folder.write("real.txt", "old");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("real.txt", folder.path("link.txt"));
    OutputFile file(folder.path("link.txt"));
    file.write("new");
    file.commit();
    EXPECT_TRUE(fs::is_symlink(folder.path("link.txt")));
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(OutputFileTest, NewFilesFollowTheUmask)
{
    const TempFolder folder;
    const mode_t old = ::umask(027);
    OutputFile file(folder.path("out.txt"));
    file.commit();
    ::umask(old);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder.path("out.txt")).permissions()), 0640u);
}

TEST(OutputFileTest, WritesDevicesDirectly)
{
    OutputFile file("/dev/null");
    file.write("gone");
    file.commit();
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(OutputFileTest, SaysWhyItCannotWrite)
{
    const TempFolder folder;
    folder.write("file", "");
    const std::pair<std::string, std::string> cases[] = {
        {folder.path("none/out.txt"), ": cannot create: No such file or directory"},
        {folder.path("file/out.txt"), ": cannot create: Not a directory"},
        {folder.path(""), ": cannot write: Is a directory"},
    };
    for (const auto& [path, message] : cases)
        try {
            OutputFile file(path);
            FAIL() << path << " opened";
        } catch (const Failure& e) {
            EXPECT_EQ(std::string(e.what()), path + message);
        }
    OutputFile full("/dev/full");
    full.write("text");
    EXPECT_THROW(full.commit(), Failure);
}

TEST(OutputPathsTest, OneFileByAnyNameIsRefused)
{
    const TempFolder folder;
    const std::string there = folder.write("there.csv", "1"), link = folder.path("link.csv"), hard = folder.path("hard.csv");
    std::filesystem::create_symlink(there, link);
    std::filesystem::create_hard_link(there, hard);
    const std::string none = folder.path("none.csv"), same = folder.path("x/../none.csv");
    struct Case {
        std::vector<NamedPath> outputs, inputs;
        std::string message;
    };
    const Case cases[] = {
        {{{"-a", none}, {"-b", same}}, {}, "-a and -b: both write to " + same},
        {{{"-a", "none.csv"}, {"-b", "./none.csv"}}, {}, "-a and -b: both write to ./none.csv"},
        {{{"-a", "-"}, {"-b", ""}, {"-c", "-"}}, {}, "-a and -c: both write to standard output"},
        {{{"-a", there}, {"-b", none}}, {{"IN", folder.path("other.csv")}}, ""},
        {{{"-a", "/dev/null"}, {"-b", "/dev/null"}}, {{"IN", "/dev/null"}}, ""},
        {{{"-a", "-"}}, {{"IN", "-"}}, ""},
        {{{"-a", there}}, {{"IN", there}}, "-a: " + there + " is read as IN; name another file"},
        {{{"-a", link}}, {{"", ""}, {"IN", there}}, "-a: " + link + " is read as IN; name another file"},
        {{{"-a", there}}, {{"IN", hard}}, "-a: " + there + " is read as IN; name another file"},
    };
    for (const Case& c : cases) {
        std::string message;
        try {
            refuseWrongOutputs(c.outputs, c.inputs);
        } catch (const Failure& e) {
            message = e.what();
        }
        EXPECT_EQ(message, c.message);
    }
}

}  // namespace
}  // namespace esttform::app
