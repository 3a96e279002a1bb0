// The text of the small generated functions, comments included, against files that people have read.
// With ESTTFORM_UPDATE_GOLDEN in the environment the files are rewritten.
#include "blockhost/codegen.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

/// A function with the comment above it, from NAME.c.
std::string functionText(const std::string& source, const std::string& name)
{
    const std::size_t head = source.find("static void " + name + "(");
    if (head == std::string::npos)
        return "no function " + name + "\n";
    const std::size_t first = source.rfind("\n/*\n", head) + 1;
    return source.substr(first, source.find("\n}\n", head) + 3 - first);
}

struct GoldenCase {
    const char* name;
    esttform::TransformType type;
    esttform::Layout layout;
    esttform::DataType pointsType;
    esttform::DataType tformType;
    std::vector<std::string> functions;
};

const GoldenCase CASES[] = {
    {"affine_U8_D_rows", esttform::TransformType::Affine, esttform::Layout::Rows, esttform::DataType::Uint8,
     esttform::DataType::Double,
     {"makeConstraintMatrix_Affine_U8_D", "normPts_U8_D", "makeConstraintMatrix_Affine_D_D", "QRV2Norm_double",
      "QRCompQy_double", "QRSL1_double"}},
    {"projective_R_columns", esttform::TransformType::Projective, esttform::Layout::Columns, esttform::DataType::Single,
     esttform::DataType::Single,
     {"makeConstraintMatrix_Projective_R_R", "normPts_R_R", "QRV2Norm_single", "QRCompQy_single", "QRE_single"}},
};

class GoldenTest : public testing::TestWithParam<GoldenCase> {};

TEST_P(GoldenTest, SmallFunctionsReadAsBefore)
{
    const GoldenCase& golden = GetParam();
    esttform::Settings settings;
    settings.type = golden.type;
    settings.layout = golden.layout;
    settings.pointsType = golden.pointsType;
    settings.tformType = golden.tformType;
    esttform::CodeOptions options;
    options.name = "model";
    options.blockPath = BLOCK_PATH;
    std::string source;
    for (const auto& file : esttform::generateCode(esttform::toParams(settings), settings.pointsType, 100, options))
        if (file.name == "model.c")
            source = file.text;
    std::string text;
    for (const std::string& function : golden.functions)
        text += functionText(source, function) + "\n";

    const std::string path = std::string(GOLDEN_FOLDER) + "/" + golden.name + ".c";
    if (std::getenv("ESTTFORM_UPDATE_GOLDEN") != nullptr)
        std::ofstream(path) << text;
    std::stringstream expected;
    expected << std::ifstream(path).rdbuf();
    EXPECT_EQ(text, expected.str()) << path;
}

INSTANTIATE_TEST_SUITE_P(, GoldenTest, testing::ValuesIn(CASES),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
