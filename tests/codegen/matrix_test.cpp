// What holds for the text of generated code under every setting.
#include "matrix_models.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>

namespace codegentest {
namespace {

TEST(MatrixTest, SameArgumentsGiveTheSameBytes)
{
    for (const MatrixModel& model : matrixModels()) {
        const std::vector<esttform::GeneratedFile> again = filesOf(model.name, model.setting);
        ASSERT_EQ(again.size(), model.files.size()) << model.setting.text;
        for (std::size_t i = 0; i < again.size(); ++i) {
            EXPECT_EQ(again[i].name, model.files[i].name) << model.setting.text;
            EXPECT_EQ(again[i].text, model.files[i].text) << model.setting.text;
        }
    }
}

/// Otherwise two models could not share it in one program.
TEST(MatrixTest, RuntimeIsTheSameForAllModels)
{
    std::map<std::string, std::string> texts;
    for (const MatrixModel& model : matrixModels())
        for (const esttform::GeneratedFile& file : model.files)
            if (isRuntimeFile(file.name)) {
                const std::string& first = texts.emplace(file.name, file.text).first->second;
                EXPECT_EQ(first, file.text) << model.setting.text;
            }
    EXPECT_EQ(texts.size(), 6u);
}

/// Removes everything from each occurrence of one text up to the next one of another.
void removeAll(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t begin = 0; (begin = text.find(from, begin)) != std::string::npos;)
        text.erase(begin, text.find(to, begin) + to.size() - begin);
}

/// What a file gives a program in single precision: without comments, without the runtime's functions for the other
/// precision, and without literals that a macro completes.
std::string codeForSingle(std::string text)
{
    removeAll(text, "/*", "*/");
    removeAll(text, "SVDC_LITERAL(", ")");
    removeAll(text, "int32_t NQZEL_SVD_D(", ");");
    const bool isDefined = text.find("NQZEL_IS_FINITE_D(double value)\n{") != std::string::npos;
    removeAll(text, "int32_t NQZEL_IS_FINITE_D(", isDefined ? "}" : ");");
    return text;
}

/// Identifiers and numbers, each a run of characters that can be part of either; a number's exponent with its sign.
std::vector<std::string> wordsOf(const std::string& code)
{
    std::vector<std::string> words(1);
    for (const char c : code) {
        std::string& word = words.back();
        const bool isNumber = !word.empty() && (std::isdigit(word.front()) != 0 || word.front() == '.');
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.'
            || ((c == '-' || c == '+') && isNumber && std::tolower(word.back()) == 'e'))
            word += c;
        else if (!word.empty())
            words.emplace_back();
    }
    return words;
}

/// The type double, and floating literals without a suffix.
std::vector<std::string> doublesIn(const std::string& code)
{
    std::vector<std::string> found;
    for (const std::string& word : wordsOf(code)) {
        const bool isFloating = word.find_first_not_of("0123456789.eE+-") == std::string::npos
                                && word.find_first_of("0123456789") < 2 && word.find_first_of(".eE") != std::string::npos;
        if (word == "double" || isFloating)
            found.push_back(word);
    }
    return found;
}

/// A device whose hardware knows float alone would compute anything else in software.
TEST(MatrixTest, SinglePrecisionHasNoDouble)
{
    ASSERT_EQ(doublesIn("double x = 0.5 + 1e-10*.5; float y = 0.5F + 1e-3F + 1.25e+10F + 0x7FU + 3 + e; a.e = b;"),
              (std::vector<std::string>{"double", "0.5", "1e-10", ".5"}));
    std::set<std::string> seen;
    for (const MatrixModel& model : matrixModels()) {
        if (model.setting.settings.tformType != esttform::DataType::Single)
            continue;
        for (const esttform::GeneratedFile& file : model.files) {
            if (!isSource(file.name) || file.name == "main.c" || !seen.insert(file.name).second)
                continue;
            EXPECT_EQ(doublesIn(codeForSingle(file.text)), std::vector<std::string>())
                << file.name << ": " << model.setting.text;
        }
    }
    EXPECT_EQ(seen.count("svd_r_rt.c"), 1u);
    EXPECT_EQ(seen.count("svd_d_rt.c"), 0u);
}

}  // namespace
}  // namespace codegentest
