// The program that codegen --with-main adds: the same JSON as 'esttform estimate', and its messages.
#include "estimate/result_writer.h"

#include "number_text.h"
#include "program.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace esttform::app {
namespace {

using Words = std::vector<std::string>;

/// Runs a command of the shell in the folder.
ProgramRun shell(const TempFolder& folder, const std::string& command)
{
    const std::string line = "cd '" + folder.path("") + "' && (" + command + ") >stdout.txt 2>stderr.txt";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(folder.path("stdout.txt")), readFile(folder.path("stderr.txt"))};
}

/// Generates a model into folder/out.
void generate(const TempFolder& folder, const Words& more)
{
    Words words{"codegen", "--with-main", "-o", folder.path("out")};
    words.insert(words.end(), more.begin(), more.end());
    const ProgramRun run = runProgram(words);
    ASSERT_EQ(run.code, 0) << run.err;
}

/// Compiles what is in folder/out to folder/program.
void compile(const TempFolder& folder)
{
    const ProgramRun run = shell(folder, C_COMPILER " -std=c99 -pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow -Werror "
                                                    "-O1 -ffp-contract=off out/*.c -lm -o program");
    ASSERT_EQ(run.code, 0) << run.err;
}

/// Two lines from the folder to the program, whose name is that of a library too.
TEST(GeneratedMainTest, PrintsTheJsonOfTheEngine)
{
    const TempFolder folder;
    const std::string pairs = BUNDLED_DATA "/arches_panorama_500.csv";
    ASSERT_NO_FATAL_FAILURE(generate(folder, {"--type", "projective", "--max-points", "500", "--name", "m"}));
    const ProgramRun build = shell(folder, "cmake -S out -B out/build && cmake --build out/build");
    ASSERT_EQ(build.code, 0) << build.out << build.err;
    const ProgramRun run = shell(folder, "out/build/m_main --seed 1 '" + pairs + "'");
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, runProgram({"estimate", pairs, "--format", "json", "--seed", "1"}).out);
}

/// Frames of any size, among them one too small for a step, and columns in any order. The pairs that are not wrong are
/// shifted; every frame has more of them than a sample, where engine and generated code do the same arithmetic.
TEST(GeneratedMainTest, TakesFramesAsTheEngineDoes)
{
    const Words options[] = {
        {"--type", "similarity", "--layout", "rows", "--sampling", "cyclic", "--samples", "50"},
        {"--type", "affine", "--points-type", "uint8", "--tform-type", "single", "--no-robust"},
        {"--type", "similarity", "--points-type", "single", "--no-inlier-output", "--sampling", "cyclic", "--samples", "9"},
    };
    std::string matches = "\xef\xbb\xbf" "y2,X1, frame ,note,x2,y1\r\n# a comment\n\n";
    std::mt19937 generator(3);
    int row = 0;
    for (const int frame : {5, 5, 5, 5, 5, -2, -2, -2, -2, 7, 8, 8, 8, 8, 8, 8, 5, 5, 5, 5, 5}) {
        const int x = int(generator() % 100), y = int(generator() % 100);
        const int y2 = x + (++row % 5 == 0 ? 40 : 0);
        matches += fmt::format("{},+{}e0,{},?,\t{}.0 ,{}\r\n", y2, y, frame, y + 3, x);
    }
    for (const Words& words : options) {
        SCOPED_TRACE(words[1] + " " + words[3]);
        const TempFolder folder;
        const std::string path = folder.write("matches.csv", matches);
        Words generated = words;
        generated.insert(generated.end(), {"--max-points", "10", "--variable-size", "--name", "m"});
        ASSERT_NO_FATAL_FAILURE(generate(folder, generated));
        ASSERT_NO_FATAL_FAILURE(compile(folder));
        Words estimate{"estimate", path, "--format", "json", "--quiet", "--seed", "1"};
        estimate.insert(estimate.end(), words.begin(), words.end());
        const ProgramRun expected = runProgram(estimate);
        EXPECT_NE(expected.out.find("pts1OrPts2TooSmall"), std::string::npos) << "the frame of one pair";
        for (const char* const command : {"./program --seed 1 matches.csv", "./program < matches.csv --seed 1"}) {
            const ProgramRun run = shell(folder, command);
            EXPECT_EQ(run.out, expected.out) << run.err;
            EXPECT_EQ(run.code, expected.code);
        }
    }
}

std::vector<double> awkwardNumbers()
{
    using Limits = std::numeric_limits<double>;
    std::vector<double> numbers{1e5, 1e-5, 0.1 + 0.2, 5e-324, Limits::max(), Limits::min(), 9007199254740993.0, 1e15, 1e16, 1e22, 1e23,
                                0.0, -0.0, 0.0001, 99999.5, 9.9999999999999996e15, double(0.1F), Limits::infinity(), Limits::quiet_NaN()};
    for (int exponent = -1074; exponent < 1024; ++exponent)
        numbers.push_back(std::ldexp(exponent % 2 == 0 ? 1.0 : -1.0, exponent));
    std::mt19937_64 generator(11);
    for (int i = 0; i < 3000; ++i) {
        const std::uint64_t bits = generator();
        double number = 0.0;
        std::memcpy(&number, &bits, sizeof(number));
        numbers.push_back(number);
        numbers.push_back(double(float(std::int64_t(bits) >> 40) / 1000.0F));
    }
    numbers.resize(numbers.size() / 6 * 6);
    return numbers;
}

/// A model that hands on its points, so that every number is read and written once: three pairs are six numbers.
TEST(GeneratedMainTest, ReadsAndWritesNumbersAsTheProgramDoes)
{
    const TempFolder folder;
    ASSERT_NO_FATAL_FAILURE(generate(folder, {"--type", "affine", "--max-points", "3"}));
    folder.write("out/esttform.c", "#include \"esttform.h\"\n"
                                   "void esttform_start(esttform_Model* model) { model->TForm[0] = 0.0; }\n"
                                   "esttform_Status esttform_step(esttform_Model* model)\n{\n"
                                   "    int i;\n    for (i = 0; i < 6; ++i) {\n        model->TForm[i] = model->Pts1[i];\n    }\n"
                                   "    return esttform_OK;\n}\n");
    ASSERT_NO_FATAL_FAILURE(compile(folder));
    const std::vector<double> numbers = awkwardNumbers();
    const std::vector<std::uint8_t> mask(3, 0);
    std::string matches = "frame,x1,y1,x2,y2\n", expected;
    for (std::size_t i = 0; i < numbers.size(); i += 6) {
        for (std::size_t k = i; k < i + 6; k += 2)
            matches += std::to_string(i / 6) + "," + exactText(numbers[k]) + "," + exactText(numbers[k + 1]) + ",0,0\n";
        StepResult result;
        result.ptsNum = 3;
        result.tformRows = 2;
        result.tformCols = 3;
        result.tformData = &numbers[i];
        result.inliers = mask.data();
        expected += toJsonLine({std::int64_t(i / 6), std::int64_t(i / 6)}, result, true);
    }
    folder.write("numbers.csv", matches);
    const ProgramRun run = shell(folder, "./program numbers.csv");
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(run.out == expected);
}

struct RefusalCase {
    const char* input;
    const char* message;
};

TEST(GeneratedMainTest, RefusesWithAMessage)
{
    const TempFolder folder;
    ASSERT_NO_FATAL_FAILURE(generate(folder, {"--type", "similarity", "--points-type", "uint8", "--max-points", "2"}));
    ASSERT_NO_FATAL_FAILURE(compile(folder));
    const RefusalCase cases[] = {
        {"", "standard input: no rows"},
        {"x1,y1,x2\n", "standard input:1: no column y2"},
        {"x1,y1,x2,y2,X1\n", "standard input:1: two columns named x1"},
        {"x1,y1,x2,y2\n", "standard input: no rows after the header"},
        {"x1,y1,x2,y2\n1,2,3\n", "standard input:2: 3 columns, expected 4"},
        {"x1,y1,x2,y2\n1,2,3,4.5\n", "standard input:2: y2: got \"4.5\", expected a whole number from 0 to 255 (uint8)"},
        {"x1,y1,x2,y2\n1,256,3,4\n", "y1: got \"256\""},
        {"x1,y1,x2,y2\n1,0x1,3,4\n", "y1: got \"0x1\""},
        {"x1,y1,x2,y2\n1,inf,3,4\n", "y1: got \"inf\""},
        {"x1,y1,x2,y2\n,1,3,4\n", "x1: got \"\""},
        {"x1,y1,x2,y2,frame\n1,2,3,4,0.5\n", "frame: got \"0.5\""},
        {"x1,y1,x2,y2\n1,2,\"3\",4\n", "standard input:2: quotes"},
        {"x1,y1,x2,y2\n1,2,3,4\n", "1 pair in a step, expected exactly 2; generate the model with --variable-size"},
        {"x1,y1,x2,y2\n1,2,3,4\n5,6,7,8\n9,9,9,9\n", "more than 2 pairs in one step"},
    };
    for (const RefusalCase& c : cases) {
        folder.write("in.csv", c.input);
        const ProgramRun run = shell(folder, "./program < in.csv");
        EXPECT_EQ(run.code, 2) << c.input;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << c.input << run.err;
    }
    for (const char* const words : {"--seed", "--seed -1", "--seed 4294967296", "--sed 1", "a.csv b.csv", "none.csv"})
        EXPECT_EQ(shell(folder, std::string("./program ") + words).code, 2) << words;
}

}  // namespace
}  // namespace esttform::app
