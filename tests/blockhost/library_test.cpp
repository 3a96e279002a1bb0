#include "fake_setup.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

using blockhost::Block;
using esttform::ErrorKind;

namespace {

std::string loadError(const std::string& path)
{
    return fake::errorOf([&] { Block block({path, {}, {}, {}, {}, {}, {}}); }, ErrorKind::Load);
}

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.rfind('/'));
}

TEST(BlockLibraryTest, LoadErrorsCarryTheReason)
{
    EXPECT_EQ(loadError("/no/such/block.so"),
              "/no/such/block.so: cannot load: cannot open shared object file: No such file or directory");
    EXPECT_EQ(loadError(FAKE_WITHOUT_START), std::string(FAKE_WITHOUT_START) + ": cannot load: callback mdlStart is missing");
    // Immediate binding: found at load and not at the first call.
    EXPECT_EQ(loadError(FAKE_UNDEFINED_SYMBOL),
              std::string(FAKE_UNDEFINED_SYMBOL) + ": cannot load: undefined symbol: bhNoHostHasThis");
    EXPECT_EQ(loadError(""), "block: cannot load: no path was given");
}

TEST(BlockLibraryTest, CutOffFileIsRefusedAndNotMapped)
{
    const std::string path = ::testing::TempDir() + "cut_off_block.so";
    std::ifstream whole(FAKE_BLOCK, std::ios::binary);
    std::string bytes(4096, '\0');
    ASSERT_TRUE(whole.read(bytes.data(), 4096));
    std::ofstream(path, std::ios::binary) << bytes;
    EXPECT_EQ(loadError(path).rfind(path + ": cannot load: file is cut off: 4096 bytes, its contents need ", 0), 0U);
    bytes[18] = 0x7F;  // the low byte of e_machine
    std::ofstream(path, std::ios::binary) << bytes << whole.rdbuf();
    EXPECT_NE(loadError(path).find("; the file is there: is it built for this machine?"), std::string::npos);
    std::remove(path.c_str());
}

TEST(BlockLibraryTest, BlockForAnotherInterfaceIsRefused)
{
    std::ifstream file(FAKE_BLOCK, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::string name("blockhost\0\0\0", 12);
    const std::string noteStart = std::string("\12\0\0\0\4\0\0\0\1\0\0\0", 12) + name;
    const std::size_t note = bytes.find(noteStart);        // of its first part: one of another version is enough
    ASSERT_NE(note, std::string::npos);
    ASSERT_EQ(bytes[note + 24], 1);
    bytes[note + 24] = 7;
    const std::string path = ::testing::TempDir() + "other_interface.so";
    std::ofstream(path, std::ios::binary) << bytes;
    EXPECT_EQ(loadError(path), path + ": cannot load: block is built for version 7 of the host interface, this host has "
                                      "version 1; compile the block again with the headers of this host");
    std::remove(path.c_str());
}

TEST(BlockLibraryTest, NameWithoutSlashIsAFileOfTheCurrentFolder)
{
    // A C library is on every search path; here it must not be found.
    EXPECT_EQ(loadError("libm.so.6"),
              "./libm.so.6: cannot load: cannot open shared object file: No such file or directory");
    ASSERT_EQ(chdir(folderOf(FAKE_BLOCK).c_str()), 0);
    EXPECT_NO_THROW(Block({"fake_block.so", {}, {}, {}, {}, {}, {}}));
}

TEST(BlockLibraryTest, LastInstanceUnloadsTheLibrary)
{
    const auto isLoaded = [] {
        void* const handle = dlopen(FAKE_BLOCK, RTLD_NOW | RTLD_NOLOAD);
        if (handle != nullptr)
            dlclose(handle);
        return handle != nullptr;
    };
    auto first = std::make_unique<Block>(fake::setupOf(fake::NONE));
    auto second = std::make_unique<Block>(fake::setupOf(fake::NONE));
    first->open();
    first.reset();
    EXPECT_TRUE(isLoaded());
    second.reset();
    EXPECT_FALSE(isLoaded());
}

TEST(BlockLibraryTest, SymbolsOfABlockStayLocal)
{
    const Block block(fake::setupOf(fake::NONE));
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "mdlInitializeSizes"), nullptr);
}

TEST(BlockPathTest, EnvironmentVariableNamesTheBlockUnlessAPathIsGiven)
{
    ASSERT_EQ(setenv("ESTTFORM_BLOCK", "/from/environment.so", 1), 0);
    const auto open = [](const std::string& path) {
        esttform::Options options;
        options.blockPath = path;
        return fake::errorOf([&] { esttform::Estimator estimator(esttform::Settings{}, 10, options); }, ErrorKind::Load);
    };
    EXPECT_EQ(open("").substr(0, 21), "/from/environment.so:");
    EXPECT_EQ(open("/from/options.so").substr(0, 17), "/from/options.so:");
    unsetenv("ESTTFORM_BLOCK");
}

}  // namespace
