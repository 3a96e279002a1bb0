// A whole model: its text against the golden files, and what the golden files do when they run.
#include "c99/writer.h"
#include "demo.h"
#include "described_tree.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

using namespace CG;
using blockhost::ir::BlockCode;
using blockhost::ir::BlockInterface;
using blockhost::ir::Model;

namespace {

/// Sum of the positive values, minus the number of negative ones. Has locals that nobody reads, names that C has taken,
/// and blocks that repeat names.
Fcn* sumFcn(Cfg& owner)
{
    const tree::Function::Inputs inputs = {{"x", tree::readOnlyArrayOf(doubleT())}, {"int", int32T()}, {"unused", booleanT()},
                                           {"sum", tree::arrayOf(doubleT())}};
    tree::Function function(owner, "sumPositive", inputs, [](DSPCG::ConstructionFacade& f) {
        f.describe("Sum of the positive values of an array, less one for each negative value.", "sumFcn");
        f.describeInput(0, "in, int values");
        f.describeInput(3, "out, 1 value");
        const Expr x = f.getInputNumRef(0);
        const Expr sum = f.derefToRef(f.getInputNumRef(3));
        const Expr i = f.localIdxVar("i");
        const Expr unread = f.localIdxVar("unread");
        const Expr onlyForUnread = f.localIdxVar("onlyForUnread");
        f.Assign(onlyForUnread, 1);
        f.Assign(unread, onlyForUnread);
        f.Assign(sum, 0);
        ForBlock perValue(f, i, f.getInputIdxRef(1));
        {
            IfBlock isPositive(f, x[i] > 0);
            f.Assign(sum, sum + x[i]);
            isPositive.otherwise();
            IfBlock isNegative(f, x[i] < 0);
            const Expr inner = f.createLocal("i", complexT(doubleT()), 0, "1 as a complex number");
            f.Assign(real(inner), 1);
            f.Assign(sum, sum - real(inner));
        }
        IfBlock hasNoEffect(f, x[i] > 5);
        f.increment(unread);
    });
    return function.findOrCreateFcn();
}

void describeDemo(Model& model)
{
    Module& module = model.module;
    model.blocks.push_back(std::make_unique<BlockCode>(module));
    BlockCode& code = *model.blocks.back();
    code.inputs.push_back({module.newVar("In", Var::Storage::InputPort, doubleT(), 8, ""), {2, 4}, true});
    code.outputs.push_back({module.newVar("Copy", Var::Storage::OutputPort, singleT(), 4, ""), {1, 4}, true});
    code.outputs.push_back({module.newVar("Whole", Var::Storage::OutputPort, int32T(), 1, ""), {1}, false});
    code.params.push_back({module.newVar("GAIN", Var::Storage::RunTimeParam, doubleT(), 0, ""), 0.1, "factor of the sum"});
    code.workVectors.push_back(module.newVar("DW_SUM", Var::Storage::WorkVector, doubleT(), 2, "sums"));
    code.settings.push_back("gain = 0.1");
    BlockInterface host(module, code);

    host.AddHeader("<stdlib.h>");
    Node* const seed = cg_node_create_untyped_external_function_call(&code.start, true, "srand", 1, 0);
    cg_node_set_in_data(seed, 1, constant(module, uint32T(), 7));
    tree::Builder(code.start).AppendStatement(seed);

    host.SetCurrentOutputDim(0, 1, host.GetCurrentInputDim(0, 1));
    tree::Builder f(code.output);
    const Expr isValid = f.createLocal("isValid", booleanT(), 0, "both rows are there");
    const Expr yes = f.createLocal("yes", booleanT());
    const Expr i = f.createLocal("i", int32T());
    const Expr last = f.createLocal("last", singleT(), 0, "last value copied");
    const Expr in(host.getInputRef(0));
    const Expr sums(host.getDWorkRef(0));
    f.Assign(yes, 1);
    f.Assign(isValid, Expr(host.GetCurrentInputDim(0, 0)) == 2);
    host.insertSizeEqCheck1D(isValid.node(), yes.node(), SourceLoc::here());
    Node* const call = cg_node_create_fcn_call_with_aux_in(sumFcn(code.output));
    const Expr arguments[] = {in[2], host.CreateConst(2), isValid, sums[0]};
    for (int k = 0; k < 4; ++k)
        cg_node_set_in_data(call, k + 1, arguments[k].node());
    f.AppendStatement(call);
    f.Assign(Expr(host.getOutputVar(1))[0], f.castNode(int32T(), sums[0] * Expr(host.getParamRef(0))));
    {
        ForBlock perColumn(f, i, Expr(host.GetCurrentInputDim(0, 1)));
        const Expr inner = f.createLocal("i", uint32T(), 0, "first value of the column");
        f.Assign(inner, f.castNode(uint32T(), i) * 2);
        f.Assign(last, f.castNode(singleT(), in[inner]));
        f.Assign(Expr(host.getOutputVar(0))[i], last);
    }
    f.Assign(sums[1], f.castNode(doubleT(), last));
}

/// With ESTTFORM_UPDATE_GOLDEN in the environment the golden files are rewritten.
TEST(ModelTest, WritesTheGoldenFiles)
{
    Model model;
    describeDemo(model);
    ASSERT_TRUE(verify(model).empty()) << verify(model).front().text;
    for (const auto& file : blockhost::c99::writeModel(model, {"demo", "A model for tests.", "esttform (test)"})) {
        const std::string path = std::string(GOLDEN_FOLDER) + "/" + file.name;
        if (std::getenv("ESTTFORM_UPDATE_GOLDEN") != nullptr)
            std::ofstream(path) << file.text;
        std::stringstream golden;
        golden << std::ifstream(path).rdbuf();
        EXPECT_EQ(file.text, golden.str());
    }
}

TEST(ModelTest, TwoBlocksShareFunctionsAndNotNames)
{
    Model model;
    describeDemo(model);
    describeDemo(model);
    const auto files = blockhost::c99::writeModel(model, {"demo", "A model for tests.", "esttform (test)"});
    const std::string& header = files[0].text;
    const std::string& source = files[1].text;
    for (const char* const field : {"double In[8];", "double In_1[8];", "double GAIN_1;", "double DW_SUM_1[2];"})
        EXPECT_NE(header.find(field), std::string::npos) << field << " in\n" << header;
    EXPECT_NE(source.find("sumPositive(&In[2]"), std::string::npos) << source;
    EXPECT_EQ(source.find("static void sumPositive"), source.rfind("static void sumPositive"));
}

TEST(ModelTest, HeaderTellsTheSizeOfTheStruct)
{
    std::stringstream header;
    header << std::ifstream(std::string(GOLDEN_FOLDER) + "/demo.h").rdbuf();
    const std::string size = std::to_string(sizeof(demo_Model)) + " bytes for the struct";
    EXPECT_NE(header.str().find(size), std::string::npos) << size;
}

struct StepCase {
    const char* name;
    std::int32_t rows, columns;
    double value;  ///< of every element
    double gain;
    demo_Status status;
    std::int32_t whole;
};

constexpr std::int32_t LOWEST = std::numeric_limits<std::int32_t>::min();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

const StepCase STEPS[] = {
    {"truncates", 2, 4, 27.4, 0.1, demo_OK, 5},
    {"truncatesTowardsZero", 2, 4, -1.0, 0.95, demo_OK, -1},
    {"largestThatFits", 2, 4, 0.5, 2147483647.5, demo_OK, 2147483647},
    {"beyondTheLargest", 2, 4, 0.5, 2147483648.0, demo_OK, LOWEST},
    {"infinite", 2, 4, 1e308, 1e308, demo_OK, LOWEST},
    {"notANumber", 2, 4, 1.0, NOT_A_NUMBER, demo_OK, LOWEST},
    {"fewerColumns", 2, 2, 10.0, 1.0, demo_OK, 20},
    {"rowsThatTheCodeRefuses", 1, 4, 10.0, 1.0, demo_SIZE_ERROR, 0},
    {"columnsBeyondTheBound", 2, 5, 10.0, 1.0, demo_SIZE_ERROR, 0},
    {"negativeColumns", 2, -1, 10.0, 1.0, demo_SIZE_ERROR, 0},
};

class StepTest : public ::testing::TestWithParam<StepCase> {};

TEST_P(StepTest, GoldenFilesRun)
{
    const StepCase& c = GetParam();
    demo_Model model;
    demo_start(&model);
    EXPECT_EQ(model.GAIN, 0.1);
    EXPECT_EQ(model.InDims[1], 4);
    for (float& element : model.Copy)
        element = 99.0F;
    model.Whole[0] = 99;
    model.GAIN = c.gain;
    model.InDims[0] = c.rows;
    model.InDims[1] = c.columns;
    for (double& element : model.In)
        element = c.value;
    EXPECT_EQ(demo_step(&model), c.status);
    EXPECT_EQ(model.Whole[0], c.whole);
    const bool isDone = c.status == demo_OK;
    EXPECT_EQ(model.Copy[0], isDone ? static_cast<float>(c.value) : 0.0F);
    EXPECT_EQ(model.Copy[3], !isDone ? 0.0F : c.columns == 4 ? static_cast<float>(c.value) : 99.0F);
    EXPECT_EQ(model.CopyDims[1], isDone || c.rows == 1 ? c.columns : 4);
}

INSTANTIATE_TEST_SUITE_P(, StepTest, ::testing::ValuesIn(STEPS),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
