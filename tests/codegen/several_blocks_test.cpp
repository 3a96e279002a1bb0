// Several blocks in one model: they share functions where their types agree, and nothing else.
#include "blockhost/c99/writer.h"
#include "blockhost/point_block.h"
#include "compiled_model.h"

#include <gtest/gtest.h>

namespace codegentest {
namespace {

using esttform::DataType;
using esttform::TransformType;

constexpr std::int32_t PTS_NUM = 20;

struct BlockKind {
    TransformType type;
    DataType dataType;
    esttform::Layout layout = esttform::Layout::Columns;
};

/// The third one differs from the first in its points only.
const BlockKind BLOCKS[] = {{TransformType::Projective, DataType::Double},
                            {TransformType::Affine, DataType::Single},
                            {TransformType::Projective, DataType::Double}};

esttform::Params paramsOf(const BlockKind& kind)
{
    esttform::Settings settings;
    settings.type = kind.type;
    settings.layout = kind.layout;
    settings.pointsType = settings.tformType = kind.dataType;
    return esttform::toParams(settings);
}

void addBlock(blockhost::ir::Model& model, const BlockKind& kind)
{
    blockhost::Block block(blockhost::pointBlockSetup(paramsOf(kind), kind.dataType, PTS_NUM, false, BLOCK_PATH));
    block.prepare();
    block.describe(model, {{{"Pts1", ""}, {"Pts2", ""}}, {{"TForm", ""}, {"Inlier", ""}}, {}});
}

/// model.h and model.c.
std::vector<esttform::GeneratedFile> filesOfAllBlocks()
{
    blockhost::ir::Model model;
    for (const BlockKind& kind : BLOCKS)
        addBlock(model, kind);
    const std::vector<blockhost::ir::Violation> violations = verify(model);
    EXPECT_TRUE(violations.empty()) << violations.front().text;
    std::vector<esttform::GeneratedFile> files;
    const blockhost::c99::ModelText text = {"model", "Three blocks.", "esttform (test)"};
    for (const blockhost::c99::SourceFile& file : blockhost::c99::writeModel(model, text))
        files.push_back({file.name, file.text});
    return files;
}

/// What a single block's folder has beside NAME.h and NAME.c.
void writeRuntime(const BlockKind& kind, const std::string& folder)
{
    esttform::CodeOptions options;
    options.name = "other";
    options.blockPath = BLOCK_PATH;
    writeFiles(esttform::generateCode(paramsOf(kind), kind.dataType, PTS_NUM, options), folder);
}

TEST(SeveralBlocksTest, SharedFunctionsAreWrittenOnce)
{
    const std::string source = filesOfAllBlocks().at(1).text;
    for (const char* const function : {"normPts_D_D", "normPts_R_R", "QRV2Norm_double", "QRV2Norm_single", "QRE_double",
                                       "QRCompQy_single", "makeConstraintMatrix_Projective_D_D",
                                       "makeConstraintMatrix_Affine_R_R"}) {
        const std::string head = std::string("static void ") + function;
        EXPECT_NE(source.find(head + "("), std::string::npos) << function;
        EXPECT_EQ(source.find(head), source.rfind(head)) << function << ": also under another name";
    }
}

/// The names of functions do not tell layouts apart, so that such blocks must not share a model.
TEST(SeveralBlocksTest, BlocksOfTwoLayoutsAreRefused)
{
    blockhost::ir::Model model;
    addBlock(model, BLOCKS[0]);
    EXPECT_TRUE(verify(model).empty());
    addBlock(model, {TransformType::Projective, DataType::Double, esttform::Layout::Rows});
    const std::vector<blockhost::ir::Violation> violations = verify(model);
    ASSERT_FALSE(violations.empty());
    EXPECT_NE(violations.front().text.find("does something else here than for an earlier block"), std::string::npos)
        << violations.front().text;
}

/// Each block's points are scaled by another factor, which its own TForm shows and no other.
TEST(SeveralBlocksTest, EachBlockEstimatesFromItsOwnPoints)
{
    const TemporaryFolder folder;
    writeRuntime(BLOCKS[0], folder.path());
    writeRuntime(BLOCKS[1], folder.path());
    writeFiles(filesOfAllBlocks(), folder.path());
    writeFiles({{"main.c", R"(
#include "model.h"
#include <stdio.h>
int main(void)
{
    static model_Model m;
    int i, status;
    model_start(&m);
    for (i = 0; i < 40; i++) {
        m.Pts1[i] = m.Pts1_1[i] = m.Pts1_2[i] = (i * 37 + i * i * 11) % 101;
        m.Pts2[i] = 2 * m.Pts1[i];
        m.Pts2_1[i] = 3 * m.Pts1_1[i];
        m.Pts2_2[i] = 5 * m.Pts1_2[i];
    }
    status = (int)model_step(&m);
    printf("%d %.3f %.3f %.3f", status, m.TForm[0], (double)m.TForm_1[0], m.TForm_2[0]);
    return 0;
}
)"}}, folder.path());
    const std::string strict = "-pedantic -Wall -Wextra -Wconversion -Wdouble-promotion -Wshadow -Werror ";
    EXPECT_EQ(runCommand("cd " + folder.path() + " && " + C_COMPILER + " -std=c99 -ffp-contract=off -c " + strict
                         + "model.c *_rt.c && " + C_COMPILER + " -std=c99 main.c *.o -lm -o run && ./run"),
              "0 2.000 3.000 5.000");
}

}  // namespace
}  // namespace codegentest
