// Work vectors and the size rule of the inlier output.
#include <gtest/gtest.h>

#include "traced_block.h"

namespace {

using namespace blocktest;
using namespace sysobj;

std::string workVectorsOf(const TracedBlock& block)
{
    std::string text;
    for (const blockhost::WorkVector& vector : block.instance().workVectors)
        text += vector.name + " " + std::to_string(vector.width) + " " + std::to_string(vector.typeId) + "; ";
    return text;
}

TEST(WorkVectors, HaveTheirWidthsAndTypes)
{
    TracedBlock projective({}, {signalOf({100, 2})});
    ASSERT_EQ(projective.tryOpen(), "");
    EXPECT_EQ(workVectorsOf(projective),
              "DW_PTSNORM1 200 0; DW_PTSNORM2 200 0; DW_FACTOR 1800 0; DW_SAMPLEIDX 100 7; DW_BEST_SAMPLE 100 7; "
              "DW_CONSTRAINT 1800 0; DW_CONSTRT_ALL 1800 0; DW_DISTANCE 100 0; ");

    TracedBlock median({{0, 1}, {2, 2}, {14, 1}, {17, 0}}, {signalOf({2, 50}, DT_INT8)});
    ASSERT_EQ(median.tryOpen(), "");
    EXPECT_EQ(workVectorsOf(median),
              "DW_PTSNORM1 100 1; DW_PTSNORM2 100 1; DW_FACTOR 500 1; DW_SAMPLEIDX 50 7; DW_BEST_SAMPLE 50 7; "
              "DW_CONSTRAINT 500 1; DW_CONSTRT_ALL 500 1; DW_DISTANCE 51 1; ");

    TracedBlock notRobust({{0, 2}, {1, 0}}, {signalOf({6, 2}, DT_SINGLE)});
    ASSERT_EQ(notRobust.tryOpen(), "");
    EXPECT_EQ(workVectorsOf(notRobust), "DW_PTSNORM1 12 1; DW_PTSNORM2 12 1; DW_FACTOR 84 1; DW_SAMPLEIDX 6 7; "
                                        "DW_BEST_SAMPLE 6 7; DW_CONSTRAINT 84 1; ");
}

TEST(WorkVectors, AreNamedInTheirOrder)
{
    TracedBlock block({}, {signalOf({8, 2})});
    ASSERT_EQ(block.tryOpen(), "");
    std::string order;
    for (const std::string& call : block.calls("bhSetDWorkName(")) order += call[15];
    EXPECT_EQ(order, "01562734");
    EXPECT_TRUE(block.called("bhSetDWorkUsageType(7, 2)"));
    EXPECT_TRUE(block.called("bhSetDWorkComplexSignal(7, 0)"));
}

TEST(WorkWidths, ReportRefusedMemory)
{
    TracedBlock noParams({}, {signalOf({8, 2})});
    noParams->refuseCall("bhSetNumRunTimeParams", 1);
    EXPECT_NE(noParams.tryOpen(), "");
    EXPECT_EQ(noParams.errors(), std::vector<std::string>{"rtpAllocFailed"});
    EXPECT_TRUE(noParams.calls("bhRegDlgParamAsRunTimeParam").empty());
    EXPECT_TRUE(noParams.calls("bhSetDWork").empty());

    TracedBlock noVectors({}, {signalOf({8, 2})});
    noVectors->refuseCall("bhSetNumDWork", 2);           // the first call, in mdlInitializeSizes, leaves the number open
    EXPECT_NE(noVectors.tryOpen(), "");
    EXPECT_EQ(noVectors.errors(), std::vector<std::string>{"memoryAllocationFailed"});
    EXPECT_EQ(noVectors.calls("bhRegDlgParamAsRunTimeParam").size(), 2U);
    EXPECT_TRUE(noVectors.calls("bhSetDWork").empty());
}

// ---- Size rule

TEST(SizeRule, ExistsForAVariableSizeMaskOnly)
{
    const Signal variable = signalOf({8, 2}, DT_DOUBLE, DIMS_MODE_VARIABLE);
    TracedBlock withRule({}, {variable, variable});
    ASSERT_EQ(withRule.tryOpen(), "");
    EXPECT_TRUE(withRule.called("bhSetSignalSizesComputeType(0)"));
    EXPECT_TRUE(withRule.called("bhAddVariableSizeSignalsRuntimeChecker(0)"));
    ASSERT_TRUE(withRule.instance().outputs[1].sizeRule);
    EXPECT_EQ(withRule.instance().outputs[1].sizeRule->inputPorts, (std::vector<int>{0, 1}));

    TracedBlock fixed({}, {signalOf({8, 2})});
    ASSERT_EQ(fixed.tryOpen(), "");
    EXPECT_FALSE(fixed.instance().outputs[1].sizeRule);
    TracedBlock noMask({{12, 0}}, {variable, variable});
    ASSERT_EQ(noMask.tryOpen(), "");
    EXPECT_TRUE(noMask.calls("bhAddOutputDimsDependencyRule").empty());
}

TEST(SizeRule, MakesTheMaskAsLongAsTheInputs)
{
    for (const bool isInRows : {true, false}) {
        const Dims bound = isInRows ? Dims{9, 2} : Dims{2, 9};
        const Dims now = isInRows ? Dims{5, 2} : Dims{2, 5};
        const Signal variable = signalOf(bound, DT_DOUBLE, DIMS_MODE_VARIABLE);
        TracedBlock block({{17, isInRows ? 1.0 : 0.0}}, {variable, variable});
        ASSERT_EQ(block.tryOpen(), "");
        block->setInputSize(0, now);
        block->setInputSize(1, now);
        block.forgetCalls();
        block->step();
        EXPECT_EQ(block.instance().outputs[1].current.text(), isInRows ? "5-by-1" : "1-by-5");
        const auto calls = block.calls("bhSetCurrentOutputPortDimensions");
        ASSERT_EQ(calls.size(), 2U);
        EXPECT_EQ(calls[0], isInRows ? "bhSetCurrentOutputPortDimensions(1, 1, 1)"
                                     : "bhSetCurrentOutputPortDimensions(1, 0, 1)") << "the fixed dimension comes first";
    }
}

TEST(SizeRule, IsStatedToTheCodeGeneratorTheSameWay)
{
    for (const bool isInRows : {true, false}) {
        const Signal variable = signalOf(isInRows ? Dims{9, 2} : Dims{2, 9}, DT_DOUBLE, DIMS_MODE_VARIABLE);
        TracedBlock block({{17, isInRows ? 1.0 : 0.0}}, {variable, variable});
        block->prepare();
        blockhost::ir::Model model;
        ASSERT_TRUE(block->describe(model, {}));
        const auto& rules = model.blocks.at(0)->sizeRules.root.stmts;
        ASSERT_EQ(rules.size(), 2U);
        const int pointDim = isInRows ? 0 : 1;
        EXPECT_EQ(rules[0].port, 1);
        EXPECT_EQ(rules[0].dim, 1 - pointDim);
        EXPECT_EQ(rules[0].value->value, 1.0);
        EXPECT_EQ(rules[1].dim, pointDim);
        EXPECT_EQ(rules[1].value->kind, CG::Node::Kind::InputDim);
        EXPECT_EQ(rules[1].value->port, 0);
        EXPECT_EQ(rules[1].value->dim, pointDim);
    }
}

}  // namespace
