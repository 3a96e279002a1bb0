// Generated code under every setting: compiled without a warning by each compiler, linked into one program, and as large
// as its headers say.
#include "call_graph.h"
#include "compiled_model.h"
#include "matrix_models.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <future>
#include <regex>
#include <set>
#include <sstream>

namespace codegentest {
namespace {

const char* const STRICT = " -pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow -Werror -ffp-contract=off ";

struct Sources {
    std::vector<std::string> library;  ///< of the models and their runtime, without repetition
    std::vector<std::string> mains;    ///< a main program for each model
};

/// Writes every model with its runtime into one folder.
Sources writeModels(const std::vector<MatrixModel>& models, const std::string& folder)
{
    std::set<std::string> library;
    Sources sources;
    for (const MatrixModel& model : models)
        for (esttform::GeneratedFile file : model.files) {
            if (!isSource(file.name))
                continue;
            if (file.name == "main.c") {
                file.name = "main_" + model.name + ".c";
                sources.mains.push_back(file.name);
            } else if (file.name.back() == 'c') {
                library.insert(file.name);
            }
            writeFiles({file}, folder);
        }
    sources.library.assign(library.begin(), library.end());
    return sources;
}

/// Settings of the models whose files a compiler's output names.
std::string settingsIn(const std::string& output, const std::vector<MatrixModel>& models)
{
    std::string text;
    for (const MatrixModel& model : models)
        if (std::regex_search(output, std::regex("\\b(main_)?" + model.name + "\\.[ch]:")))
            text += "\n" + model.name + ": " + model.setting.text;
    return text;
}

/// Compiles the sources in two processes. @return the compiler's output when it failed, else nothing
std::string compileAll(const std::string& compiler, const std::string& folder, const std::vector<std::string>& sources)
{
    std::string commands[2];
    for (std::size_t i = 0; i < sources.size(); ++i)
        commands[i % 2] += " " + sources[i];
    std::future<std::string> runs[2];
    for (std::size_t i = 0; i < 2; ++i)
        runs[i] = std::async(std::launch::async, [command = "cd " + folder + " && " + compiler + commands[i]] {
            try {
                runCommand(command);
            } catch (const std::exception& failure) {
                return std::string(failure.what());
            }
            return std::string();
        });
    std::string output = runs[0].get();
    return output + runs[1].get();
}

/// A program that steps every model over equal sets of points, and prints each one's status and whether it found identity.
std::string stepAll(const std::vector<MatrixModel>& models)
{
    std::string text = "#include <stdio.h>\n";
    for (const MatrixModel& model : models)
        text += "#include \"" + model.name + ".h\"\n";
    text += R"(
#define STEP(NAME) { \
        static NAME##_Model model; \
        NAME##_start(&model); \
        for (int i = 0; i < (int)(sizeof model.Pts1 / sizeof model.Pts1[0]); i++) \
            model.Pts1[i] = model.Pts2[i] = (i * 37 + i * i * 11) % 101; \
        const int status = (int)NAME##_step(&model); \
        printf("%s %d %d\n", #NAME, status, model.TForm[0] > 0.99F && model.TForm[0] < 1.01F); \
    }
int main(void)
{
)";
    for (const MatrixModel& model : models)
        text += "    STEP(" + model.name + ")\n";
    return text + "    return 0;\n}\n";
}

struct CompilerCase {
    const char* name;
    const char* compiler;  ///< empty: not on this machine
    const char* flags;
    const char* linker;
    bool isForMains;       ///< the main programs are C99 alone
};

const CompilerCase COMPILERS[] = {
    {"gccC99", GCC, "-std=c99", GCC, true},
    {"clangC99", CLANG, "-std=c99", CLANG, true},
    {"gccCpp17", GXX, "-x c++ -std=c++17", C_COMPILER, false},
};

class CompilerTest : public testing::TestWithParam<CompilerCase> {};

TEST_P(CompilerTest, AllModelsAreOneProgramWithoutAWarning)
{
    const CompilerCase& c = GetParam();
    if (*c.compiler == '\0')
        GTEST_SKIP() << "this machine lacks the compiler";
    const std::vector<MatrixModel> models = matrixModels();
    const TemporaryFolder folder;
    const Sources sources = writeModels(models, folder.path());
    const std::string compiler = std::string(c.compiler) + " " + c.flags + STRICT;
    std::string output = compileAll(compiler + "-O2 -c", folder.path(), sources.library);
    if (c.isForMains)
        output += compileAll(compiler + "-O2 -S", folder.path(), sources.mains);
    ASSERT_EQ(output, "") << settingsIn(output, models);

    writeFiles({{"main.c", stepAll(models)}}, folder.path());
    std::string expected;
    for (const MatrixModel& model : models)
        expected += model.name + " 0 1\n";
    EXPECT_EQ(runCommand("cd " + folder.path() + " && " + c.linker + " -std=c99 main.c *.o -lm -o all && ./all"), expected);
}

INSTANTIATE_TEST_SUITE_P(, CompilerTest, testing::ValuesIn(COMPILERS),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(MatrixSizeTest, HeadersTellTheSizeOfTheStruct)
{
    const std::vector<MatrixModel> models = matrixModels();
    const TemporaryFolder folder;
    writeModels(models, folder.path());
    std::string text;
    for (const MatrixModel& model : models)
        text += "#include \"" + model.name + ".h\"\n_Static_assert(sizeof(" + model.name + "_Model) == "
                + std::to_string(numberBefore(" bytes for the struct", model)) + ", \"" + model.setting.text + "\");\n";
    writeFiles({{"sizes.c", text}}, folder.path());
    EXPECT_NO_THROW(runCommand("cd " + folder.path() + " && " + C_COMPILER + " -std=c11 -fsyntax-only sizes.c"));
}

std::string contentOf(const std::string& path)
{
    std::stringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

/// The first robust model of each kind: precision, points of its type or integers, projective, refining, variable.
std::vector<MatrixModel> oneOfEachKind()
{
    std::set<std::array<bool, 5>> kinds;
    std::vector<MatrixModel> chosen;
    for (MatrixModel& model : matrixModels()) {
        const esttform::Settings& s = model.setting.settings;
        const std::array<bool, 5> kind = {s.tformType == esttform::DataType::Single, s.pointsType == s.tformType,
                                          s.type == esttform::TransformType::Projective, s.isRefineIteratively,
                                          model.setting.isVariable};
        if (s.isRobust && kinds.insert(kind).second)
            chosen.push_back(std::move(model));
    }
    return chosen;
}

/// A leaf function may use this many bytes below its frame on x86-64; they are not in its frame's size.
constexpr std::size_t RED_ZONE = 128;

class StackTest : public testing::TestWithParam<const char*> {};

TEST_P(StackTest, StepTakesAtMostWhatTheHeaderSays)
{
    if (*GCC == '\0')
        GTEST_SKIP() << "GCC alone writes call graphs, from version 10";
    const std::vector<MatrixModel> models = oneOfEachKind();
    const TemporaryFolder folder;
    const std::vector<std::string> sources = writeModels(models, folder.path()).library;
    const std::string compiler = std::string(GCC) + " -std=c99 -fcallgraph-info=su -ffp-contract=off -c -" + GetParam();
    ASSERT_EQ(compileAll(compiler, folder.path(), sources), "");
    CallGraph graph;
    for (const std::string& source : sources)
        graph.add(contentOf(folder.path() + "/" + source.substr(0, source.size() - 1) + "ci"));
    ASSERT_TRUE(graph.has("NQZEL_SVD_D") && graph.has("NQZEL_SVD_R")) << "the runtime's frames are counted";
    for (const MatrixModel& model : models)
        EXPECT_LE(graph.deepest(model.name + "_step") + RED_ZONE, numberBefore(" bytes of stack for a step", model))
            << model.setting.text;
}

INSTANTIATE_TEST_SUITE_P(, StackTest, testing::Values("O0", "O2", "O3", "Os"),
                         [](const auto& test) { return std::string(test.param); });

}  // namespace
}  // namespace codegentest
