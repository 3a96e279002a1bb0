// Ports: what is declared, and what the propagation callbacks make of offers.
#include <gtest/gtest.h>

#include "traced_block.h"

namespace {

using namespace blocktest;
using namespace sysobj;
using blockhost::Attribute;
using blockhost::Direction;

TEST(InitializeSizes, DeclaresPortsAndOptionsInOrder)
{
    TracedBlock block({{0, 2}, {17, 0}});
    block->initializeSizes();
    const std::vector<std::string> expected = {
        "mdlInitializeSizes()",
        "registerSFunctionParams(18) -> true",
        "bhSetModelReferenceSampleTimeInheritanceRule(1)",
        "bhSetSFcnParamTunable(0, 0)", "bhSetSFcnParamTunable(1, 0)", "bhSetSFcnParamTunable(2, 0)",
        "bhSetSFcnParamTunable(5, 0)", "bhSetSFcnParamTunable(9, 0)", "bhSetSFcnParamTunable(11, 0)",
        "bhSetSFcnParamTunable(12, 0)", "bhSetSFcnParamTunable(13, 0)", "bhSetSFcnParamTunable(14, 0)",
        "bhSetSFcnParamTunable(15, 0)", "bhSetSFcnParamTunable(16, 0)", "bhSetSFcnParamTunable(17, 0)",
        "bhSetSFcnParamTunable(4, 1)", "bhSetSFcnParamTunable(3, 0)", "bhSetSFcnParamTunable(6, 0)",
        "bhSetSFcnParamTunable(7, 1)", "bhSetSFcnParamTunable(8, 0)", "bhSetSFcnParamTunable(10, 0)",
        "bhSetNumInputPorts(2) -> 1",
        "getDefaultDimensionInfo() -> dynamic",
        "bhSetInputPortDimensionInfo(0, dynamic) -> 1", "bhSetInputPortFrameData(0, -1) -> 1",
        "bhSetInputPortDataType(0, unset) -> 1", "bhSetInputPortComplexSignal(0, 0)",
        "bhSetInputPortOptimOpts(0, 0x1)", "bhSetInputPortDirectFeedThrough(0, 1)",
        "bhSetInputPortOverWritable(0, 0)", "bhSetInputPortRequiredContiguous(0, 1)",
        "bhSetInputPortDimensionsMode(0, unset) -> 1",
        "bhSetInputPortDimensionInfo(1, dynamic) -> 1", "bhSetInputPortFrameData(1, -1) -> 1",
        "bhSetInputPortDataType(1, unset) -> 1", "bhSetInputPortComplexSignal(1, 0)",
        "bhSetInputPortOptimOpts(1, 0x1)", "bhSetInputPortDirectFeedThrough(1, 1)",
        "bhSetInputPortOverWritable(1, 0)", "bhSetInputPortRequiredContiguous(1, 1)",
        "bhSetInputPortDimensionsMode(1, unset) -> 1",
        "bhSetNumOutputPorts(2) -> 1",
        "bhSetOutputPortMatrixDimensions(0, 2, 3) -> 1", "bhSetOutputPortFrameData(0, 0) -> 1",
        "bhSetOutputPortComplexSignal(0, 0)", "bhSetOutputPortOptimOpts(0, 0x1)",
        "bhSetOutputPortDataType(0, unset) -> 1", "bhSetOutputPortDimensionsMode(0, fixed) -> 1",
        "getDefaultDimensionInfo() -> dynamic",
        "bhSetOutputPortDimensionInfo(1, dynamic) -> 1", "bhSetOutputPortFrameData(1, 0) -> 1",
        "bhSetOutputPortComplexSignal(1, 0)", "bhSetOutputPortOptimOpts(1, 0x1)",
        "bhSetOutputPortDataType(1, boolean) -> 1", "bhSetOutputPortDimensionsMode(1, unset) -> 1",
        "bhRegMdlSetInputPortDimensionsModeFcn(mdlSetInputPortDimsMode)",
        "bhSetNumDWork(-1) -> true",
        "bhSetVektCG(1)", "bhSetUserData(null)", "bhSetModelReferenceNormalModeSupport(2)", "bhSetNumSampleTimes(1)",
        "bhSetSimStateCompliance(1)", "bhSetOptions(0x21280002)",
    };
    EXPECT_EQ(block.calls(), expected);
    block->initializeSampleTimes();
    EXPECT_TRUE(block.called("bhSetSampleTime(0, -1)"));
    EXPECT_TRUE(block.called("bhSetOffsetTime(0, 0)"));
}

TEST(InitializeSizes, StopsAtEveryRefusal)
{
    const char* const setters[] = {"registerSFunctionParams", "bhSetNumInputPorts", "bhSetInputPortDimensionInfo",
                                   "bhSetNumOutputPorts", "bhSetOutputPortMatrixDimensions",
                                   "bhSetOutputPortDimensionInfo", "bhSetInputPortFrameData",
                                   "bhSetInputPortDataType", "bhSetInputPortDimensionsMode",
                                   "bhSetOutputPortFrameData", "bhSetOutputPortDataType",
                                   "bhSetOutputPortDimensionsMode", "bhSetNumDWork"};
    for (const char* const setter : setters) {
        TracedBlock block;
        block->refuseCall(setter, 1);
        EXPECT_THROW(block->initializeSizes(), esttform::Error) << setter;
        EXPECT_EQ(block.calls().back().rfind(setter, 0), 0U) << setter << ", went on to " << block.calls().back();
    }
}

struct TFormSize {
    double type, isInRows, hasInliers;
    int rows, cols, outputNum;
};

TEST(TForm, HasTheSizeOfTypeAndLayout)
{
    const TFormSize sizes[] = {{1, 1, 1, 3, 2, 2}, {2, 1, 1, 3, 2, 2}, {3, 1, 0, 3, 3, 1},
                               {1, 0, 0, 2, 3, 1}, {2, 0, 1, 2, 3, 2}, {3, 0, 1, 3, 3, 2}};
    for (const TFormSize& size : sizes) {
        TracedBlock block({{0, size.type}, {17, size.isInRows}, {12, size.hasInliers}});
        ASSERT_EQ(block.tryOpen(), "");
        EXPECT_EQ(block.instance().outputs[0].dims.text(), (Dims{size.rows, size.cols}).text());
        EXPECT_EQ(block.instance().outputs.size(), static_cast<std::size_t>(size.outputNum));
    }
    TracedBlock notRobust({{1, 0}, {12, 1}});
    ASSERT_EQ(notRobust.tryOpen(), "");
    EXPECT_EQ(notRobust.instance().outputs.size(), 1U) << "the inlier output needs robust estimation";
}

// ---- Sizes

struct SizeCase {
    const char* name;
    ParamChanges changes;
    Dims pts1, pts2, inlier;              ///< offered sizes; dynamic ones are left open
    std::vector<std::string> errors;      ///< raised by the block
    std::string ports;                    ///< settled sizes of Pts1, Pts2 and the mask; empty when there is an error
};

class SizeTest : public testing::TestWithParam<SizeCase> {};

TEST_P(SizeTest, Settles)
{
    const SizeCase& c = GetParam();
    const bool hasMask = c.changes != ParamChanges{{12, 0}};
    std::vector<Signal> inputs(2), outputs(hasMask ? 2 : 1);
    if (c.pts1.isKnown()) inputs[0].dims = c.pts1;
    if (c.pts2.isKnown()) inputs[1].dims = c.pts2;
    if (c.inlier.isKnown()) outputs[1].dims = c.inlier;
    TracedBlock block(c.changes, inputs, outputs);
    const std::string text = block.tryOpen();
    EXPECT_EQ(block.errors(), c.errors);
    EXPECT_EQ(text.empty(), c.errors.empty()) << text;
    if (!text.empty()) return;
    std::string ports;
    for (const auto* const list : {&block.instance().inputs, &block.instance().outputs}) {
        for (std::size_t i = list == &block.instance().inputs ? 0 : 1; i < list->size(); ++i)
            ports += (ports.empty() ? "" : ", ") + (*list)[i].dims.text();
    }
    EXPECT_EQ(ports, c.ports);
}

const ParamChanges kCols = {{17, 0}};
const SizeCase kSizes[] = {
    {"rowsFromPts1", {}, {9, 2}, {}, {}, {}, "9-by-2, 9-by-2, 9-by-1"},
    {"columnsFromPts2", kCols, {}, {2, 9}, {}, {}, "2-by-9, 2-by-9, 1-by-9"},
    {"smallestProjective", {}, {4, 2}, {4, 2}, {}, {}, "4-by-2, 4-by-2, 4-by-1"},
    {"tooSmallProjective", {}, {3, 2}, {}, {}, {"pts1OrPts2TooSmall 4"}, ""},
    {"tooSmallSimilarity", {{0, 1}, {17, 0}}, {2, 1}, {}, {}, {"pts1OrPts2TooSmall 2"}, ""},
    {"notTwoColumns", {}, {9, 3}, {}, {}, {"pts1Pts2NotMx2"}, ""},
    {"notTwoRows", kCols, {9, 2}, {}, {}, {"pts1Pts2Not2xN"}, ""},
    {"differentNumbers", kCols, {2, 10}, {2, 9}, {}, {"pts1AndPts2SizesDiffer"}, ""},
    {"vectorOffered", {}, {9}, {}, {}, {"pts1Pts2Not2xN"}, ""},
    {"threeDimensions", kCols, {2, 9, 1}, {}, {}, {"pts1Pts2Not2xN"}, ""},
    {"maskSizesInputs", {}, {}, {}, {7, 1}, {}, "7-by-2, 7-by-2, 7-by-1"},
    {"maskVectorKept", {}, {}, {}, {7}, {}, "7-by-2, 7-by-2, vector of 7"},
    {"maskRowKept", {}, {}, {}, {1, 7}, {}, "7-by-2, 7-by-2, 1-by-7"},
    {"maskNotVector", {}, {}, {}, {7, 2}, {"inlierOutNotVector"}, ""},
    {"maskTooSmall", {}, {}, {}, {3, 1}, {"inlierOutSzTooSmall 4"}, ""},
    {"defaultRows", {}, {}, {}, {}, {}, "4-by-2, 4-by-2, 4-by-1"},
    {"defaultSimilarity", {{0, 1}, {17, 0}}, {}, {}, {}, {}, "2-by-2, 2-by-2, 1-by-2"},
    {"noMask", {{12, 0}}, {9, 2}, {}, {}, {}, "9-by-2, 9-by-2"},
};
INSTANTIATE_TEST_SUITE_P(, SizeTest, testing::ValuesIn(kSizes),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Sizes, AreSetEvenAfterAnError)
{
    TracedBlock block({}, {signalOf({3, 2})});
    EXPECT_NE(block.tryOpen(), "");
    EXPECT_TRUE(block.called("bhSetInputPortMatrixDimensions(0, 3, 2) -> 1"));
    EXPECT_TRUE(block.called("bhSetInputPortMatrixDimensions(1, 3, 2) -> 1"));
}

// ---- Types

struct TypeCase {
    int pts1;                ///< offered to Pts1; unset: left open
    int tform;               ///< offered to TForm
    double tformForIntegers;
    std::string types;       ///< Pts1, Pts2, TForm; empty: refused
};

TEST(Types, FollowTheFirstOffer)
{
    const TypeCase cases[] = {
        {DT_UNSET, DT_UNSET, 2, "0, 0, 0"}, {DT_UNSET, DT_SINGLE, 2, "1, 1, 1"}, {DT_SINGLE, DT_UNSET, 2, "1, 1, 1"},
        {DT_DOUBLE, DT_UNSET, 1, "0, 0, 0"}, {DT_INT16, DT_UNSET, 2, "4, 4, 0"}, {DT_INT16, DT_UNSET, 1, "4, 4, 1"},
        {DT_UINT32, DT_UNSET, 1, "7, 7, 1"}, {DT_BOOLEAN, DT_UNSET, 1, ""}, {DT_UNSET, DT_INT8, 1, ""},
    };
    for (const TypeCase& c : cases) {
        std::vector<Signal> inputs(2), outputs(1);
        if (c.pts1 != DT_UNSET) inputs[0].typeId = c.pts1;
        if (c.tform != DT_UNSET) outputs[0].typeId = c.tform;
        TracedBlock block({{14, c.tformForIntegers}}, inputs, outputs);
        const std::string text = block.tryOpen();
        const auto& instance = block.instance();
        const std::string types = std::to_string(instance.inputs[0].typeId) + ", "
                                + std::to_string(instance.inputs[1].typeId) + ", "
                                + std::to_string(instance.outputs[0].typeId);
        EXPECT_EQ(text.empty() ? types : "", c.types) << text << " for points " << c.pts1 << ", TForm " << c.tform;
    }
    TracedBlock named({}, {Signal(), signalOf({9, 2}, DT_BOOLEAN)});
    EXPECT_NE(named.tryOpen(), "");
    EXPECT_TRUE(named.called("dspIsDataTypeSupported(boolean, 1, 0, \"Pts2\", 0xff, 0) -> false"));
}

// ---- Modes

TEST(Modes, ReachTheMaskOnceBothInputsHaveOne)
{
    const Signal variable = signalOf({9, 2}, DT_DOUBLE, DIMS_MODE_VARIABLE);
    TracedBlock block({}, {variable, variable});
    ASSERT_EQ(block.tryOpen(), "");
    EXPECT_EQ(block.calls("bhSetOutputPortDimensionsMode(1, variable)").size(), 1U);
    EXPECT_EQ(block.instance().outputs[1].mode, DIMS_MODE_VARIABLE);

    TracedBlock noMask({{12, 0}}, {variable, variable});
    ASSERT_EQ(noMask.tryOpen(), "");
    EXPECT_EQ(noMask.calls("bhSetOutputPortDimensionsMode").size(), 1U) << "only the fixed mode of TForm";

    TracedBlock different({}, {variable, signalOf({9, 2})});
    const std::string text = different.tryOpen();
    EXPECT_NE(text.find("input port 1"), std::string::npos) << text;
    EXPECT_EQ(different.calls("bhSetInputPortDimensionsMode(1, fixed)").size(), 0U) << "nothing is set";
}

// ---- Orders of propagation

TEST(Propagation, HasOneResultInEveryOrder)
{
    const Signal points = signalOf({12, 2}, DT_UINT16, DIMS_MODE_VARIABLE);
    std::vector<blockhost::Offer> offers;
    for (const Attribute attribute : {Attribute::Size, Attribute::DataType, Attribute::Mode})
        for (const int port : {0, 1}) offers.push_back({Direction::In, port, attribute});
    for (std::size_t i = 0; i < offers.size(); ++i) {
        std::rotate(offers.begin(), offers.begin() + 1, offers.end());
        TracedBlock block({}, {points, points}, {}, offers);
        ASSERT_EQ(block.tryOpen(), "") << "order " << i;
        EXPECT_EQ(block.instance().outputs[0].typeId, DT_DOUBLE) << "order " << i;
        EXPECT_EQ(block.instance().outputs[1].dims.text(), "12-by-1") << "order " << i;
        EXPECT_EQ(block.instance().outputs[1].mode, DIMS_MODE_VARIABLE) << "order " << i;
    }
}

}  // namespace
