#include "program.h"

#include "leak_suppressions.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

TempFolder::TempFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "esttform_test.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("cannot create " + name);
    mPath = name;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TempFolder::write(const std::string& name, const std::string& text) const
{
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
}

std::vector<std::string> TempFolder::names() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(mPath))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path << " is missing";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

namespace {

/// Replaces the child's stream by a file.
void redirect(const std::string& path, int flags, int stream)
{
    const int file = open(path.c_str(), flags, 0600);
    if (file < 0 || dup2(file, stream) < 0)
        _exit(126);
}

}  // namespace

void waitUntil(const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_TRUE(condition());
}

ProgramRun runProgram(const std::vector<std::string>& arguments, const RunSetting& setting)
{
    const TempFolder folder;
    const std::string inPath = folder.write("in", setting.input), outPath = folder.path("out"), errPath = folder.path("err");
    const std::string leakOptions = "suppressions=" + folder.write("leaks", __lsan_default_suppressions()) + ":print_suppressions=0";
    int pipeEnds[2] = {-1, -1};
    if (setting.isOutputClosed && pipe(pipeEnds) != 0)
        throw std::runtime_error("cannot open a pipe");

    const pid_t child = fork();
    if (child == 0) {
        redirect(inPath, O_RDONLY, STDIN_FILENO);
        redirect(setting.outputDevice.empty() ? outPath : setting.outputDevice, O_WRONLY | O_CREAT, STDOUT_FILENO);
        redirect(errPath, O_WRONLY | O_CREAT, STDERR_FILENO);
        if (setting.isOutputClosed) {
            dup2(pipeEnds[1], STDOUT_FILENO);
            close(pipeEnds[0]);
            close(pipeEnds[1]);
        }
        std::vector<std::string> words{ESTTFORM_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        setenv("LSAN_OPTIONS", leakOptions.c_str(), 1);
        for (const std::string& variable : setting.environment)
            putenv(strdup(variable.c_str()));
        execv(ESTTFORM_PROGRAM, argv.data());
        _exit(127);
    }
    if (setting.isOutputClosed) {
        close(pipeEnds[0]);
        close(pipeEnds[1]);
    }
    if (setting.meanwhile)
        setting.meanwhile(child);
    int status = 0;
    waitpid(child, &status, 0);
    ProgramRun run;
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (setting.outputDevice.empty())
        run.out = readFile(outPath);
    run.err = readFile(errPath);
    return run;
}

std::string similarityMatches(int pairNum)
{
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> place(0.0, 500.0);
    std::ostringstream text;
    text.precision(17);
    text << "x1,y1,x2,y2\n";
    for (int i = 0; i < pairNum; ++i) {
        const double x = place(generator), y = place(generator);
        if (i % 5 < 3)
            text << x << ',' << y << ',' << 0.8 * x - 0.6 * y + 10.0 << ',' << 0.6 * x + 0.8 * y - 20.0 << '\n';
        else
            text << x << ',' << y << ',' << place(generator) + 1000.0 << ',' << place(generator) << '\n';
    }
    return text.str();
}
