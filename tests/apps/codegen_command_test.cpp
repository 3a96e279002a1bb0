// The command codegen: a folder appears whole or not at all, and nothing of the user's is lost.
#include "failure.h"
#include "output/output_folder.h"
#include "program.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>

namespace esttform::app {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

ProgramRun generate(const std::string& folder, const Words& more = {})
{
    Words words{"codegen", "--max-points", "20", "-o", folder};
    words.insert(words.end(), more.begin(), more.end());
    return runProgram(words);
}

Words namesIn(const std::string& folder)
{
    Words names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

const Words FILES{"CMakeLists.txt", "generated_files.txt", "is_little_endian_rt.c", "model.c", "model.h", "svd_d_rt.c",
                  "svd_helper_rt.c", "zelendian_rt.h", "zelsvd_rt.h"};

TEST(CodegenTest, WritesAllFilesAndTheSameOnesAgain)
{
    const TempFolder folder;
    const ProgramRun run = generate(folder.path("out"), {"--name", "model"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, folder.path("out") + ": 8 files written\n");
    EXPECT_EQ(namesIn(folder.path("out")), FILES);
    EXPECT_EQ(folder.names(), Words{"out"});

    ASSERT_EQ(generate(folder.path("again"), {"--name", "model"}).code, 0);
    for (const std::string& name : FILES)
        EXPECT_EQ(readFile(folder.path("again/" + name)), readFile(folder.path("out/" + name))) << name;

    ASSERT_EQ(generate(folder.path("single"), {"--points-type", "single", "--with-main"}).code, 0);
    EXPECT_TRUE(fs::exists(folder.path("single/svd_r_rt.c")) && fs::exists(folder.path("single/main.c")));
    EXPECT_FALSE(fs::exists(folder.path("single/svd_d_rt.c")));
}

TEST(CodegenTest, DumpsTheTreeInstead)
{
    const ProgramRun run = runProgram({"codegen", "--max-points", "20", "--dump-ir"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_NE(run.out.find("tformCompact"), std::string::npos);
}

struct RefusalCase {
    const char* name;
    Words words;
    const char* message;
};

/// Nothing is written in any of these.
TEST(CodegenTest, RefusesWithAMessage)
{
    const RefusalCase cases[] = {
        {"noSize", {"codegen", "-o", "out"}, "--max-points"},
        {"tooFew", {"codegen", "--max-points", "3", "-o", "out"}, "too few points"},
        {"noFolder", {"codegen", "--max-points", "9"}, "--output: not given"},
        {"seed", {"codegen", "--max-points", "9", "--seed", "1", "-o", "out"}, "--seed: no effect"},
        {"dumpAndFolder", {"codegen", "--max-points", "9", "--dump-ir", "-o", "out"}, "--output: has no effect with --dump-ir"},
        {"keyword", {"codegen", "--max-points", "9", "--name", "double", "-o", "out"}, "double"},
        {"pathAsName", {"codegen", "--max-points", "9", "--name", "../x", "-o", "out"}, "../x"},
        {"cmakeTarget", {"codegen", "--max-points", "9", "--name", "install", "-o", "out"}, "install"},
        {"noParent", {"codegen", "--max-points", "9", "-o", "none/out"}, "none/out: cannot create the folder: "},
        {"standardOutput", {"codegen", "--max-points", "9", "-o", "-"}, "-: standard output is no folder"},
        {"linkToNothing", {"codegen", "--max-points", "9", "-o", "dangling"}, "dangling: is a link to nothing"},
        {"linkToItself", {"codegen", "--max-points", "9", "-o", "loop"}, "loop: cannot create the folder: "},
        {"file", {"codegen", "--max-points", "9", "-o", "file"}, "file: cannot create the folder: File exists"},
        {"current", {"codegen", "--max-points", "9", "-o", "."}, ".: the folder is not empty"},
    };
    const TempFolder folder;
    folder.write("file", "kept");
    fs::create_symlink("nothing", folder.path("dangling"));
    fs::create_symlink("loop", folder.path("loop"));
    const fs::path before = fs::current_path();
    fs::current_path(folder.path(""));
    for (const RefusalCase& c : cases) {
        const ProgramRun run = runProgram(c.words);
        EXPECT_EQ(run.code, 2) << c.name;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << c.name << ": " << run.err;
    }
    fs::current_path(before);
    EXPECT_EQ(folder.names(), (Words{"dangling", "file", "loop"}));
    EXPECT_EQ(readFile(folder.path("file")), "kept");
}

TEST(CodegenTest, ReplacesItsOwnFilesOnly)
{
    const TempFolder folder;
    const std::string out = folder.path("out");
    ASSERT_EQ(generate(out, {"--name", "first"}).code, 0);
    fs::create_directory(out + "/build");
    folder.write("out/build/cache", "built");
    folder.write("out/notes.txt", "mine");
    EXPECT_EQ(generate(out).code, 2) << "not empty";

    folder.write("out/main.c", "mine too");
    const ProgramRun clash = generate(out, {"--force", "--with-main"});
    EXPECT_EQ(clash.code, 2);
    EXPECT_NE(clash.err.find("out/main.c: was not generated"), std::string::npos) << clash.err;
    EXPECT_TRUE(fs::exists(out + "/first.c"));

    const ProgramRun run = generate(out, {"--force", "--name", "model"});
    EXPECT_EQ(run.code, 0) << run.err;
    Words expected = FILES;
    expected.insert(expected.end(), {"build", "main.c", "notes.txt"});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(namesIn(out), expected) << "without first.h and first.c";
    EXPECT_EQ(readFile(out + "/build/cache") + readFile(out + "/notes.txt") + readFile(out + "/main.c"), "builtminemine too");
    EXPECT_EQ(folder.names(), Words{"out"});
}

/// A new file that has vanished is a stand-in for any failure on the way.
TEST(OutputFolderTest, PutsTheOldFilesBackWhenAMoveFails)
{
    const TempFolder folder;
    {
        OutputFolder output(folder.path("out"), false);
        output.write("a.c", "old a");
        output.write("b.c", "old b");
        output.commit();
    }
    OutputFolder output(folder.path("out"), true);
    output.write("a.c", "new a");
    output.write("b.c", "new b");
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path("out")))
        if (entry.is_directory())
            fs::remove(entry.path() / "b.c");
    EXPECT_THROW(output.commit(), Failure);
    EXPECT_EQ(readFile(folder.path("out/a.c")) + readFile(folder.path("out/b.c")), "old aold b");
}

TEST(CodegenTest, NeverReplacesAFolderThatItDidNotWrite)
{
    const TempFolder folder;
    fs::create_directory(folder.path("home"));
    folder.write("home/letter", "dear");
    const ProgramRun run = generate(folder.path("home"), {"--force"});
    EXPECT_EQ(run.code, 2);
    EXPECT_NE(run.err.find("has no generated_files.txt"), std::string::npos) << run.err;
    EXPECT_EQ(namesIn(folder.path("home")), Words{"letter"});
}

TEST(CodegenTest, FollowsALinkToAnEmptyFolder)
{
    const TempFolder folder;
    fs::create_directory(folder.path("real"));
    fs::create_directory_symlink("real", folder.path("link"));
    ASSERT_EQ(generate(folder.path("link"), {"--name", "model"}).code, 0);
    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_EQ(namesIn(folder.path("real")), FILES);
    EXPECT_EQ(folder.names(), (Words{"link", "real"}));
}

/// A list that names files elsewhere, or a link, deletes nothing there.
TEST(OutputFolderTest, StaysInsideTheFolder)
{
    const TempFolder folder;
    folder.write("precious", "kept");
    fs::create_directory(folder.path("out"));
    folder.write("out/generated_files.txt", "../precious\nlink\n" + folder.path("precious") + "\ngenerated_files.txt\n");
    fs::create_symlink("../precious", folder.path("out/link"));
    {
        OutputFolder output(folder.path("out"), true);
        EXPECT_THROW(output.write("../precious", "overwritten"), std::exception);
        output.write("new.c", "text");
        output.commit();
    }
    EXPECT_EQ(readFile(folder.path("precious")), "kept");
    EXPECT_EQ(namesIn(folder.path("out")), (Words{"generated_files.txt", "link", "new.c"}));
    EXPECT_EQ(folder.names(), (Words{"out", "precious"}));
}

TEST(OutputFolderTest, LeavesNothingWhenNotCommitted)
{
    const TempFolder folder;
    const mode_t old = ::umask(027);
    {
        OutputFolder output(folder.path("out"), false);
        output.write("a.c", "text");
    }
    EXPECT_EQ(folder.names(), Words{});
    OutputFolder output(folder.path("out"), false);
    output.commit();
    ::umask(old);
    EXPECT_EQ(static_cast<unsigned>(fs::status(folder.path("out")).permissions()), 0750u) << "permissions by the umask";
}

}  // namespace
}  // namespace esttform::app
