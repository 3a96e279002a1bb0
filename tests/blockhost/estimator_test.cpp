#include "fake_setup.h"

#include <cstring>
#include <vector>

using esttform::DataType;
using esttform::Error;
using esttform::ErrorKind;
using esttform::Estimator;
using esttform::Layout;
using esttform::Options;
using esttform::Settings;
using esttform::StepResult;
using esttform::TransformType;

namespace {

constexpr int PTS_NUM = 12;
constexpr int SHIFT_X = 2;
constexpr int SHIFT_Y = 3;
constexpr int WRONG_PAIR = 5;

/// A grid of points, x and y.
int coordinate(int pair, int axis)
{
    return axis == 0 ? 7 * (pair % 4) + pair / 4 : 5 * (pair / 4) + pair % 3;
}

/// The grid (set 1), or the grid shifted with one wrong match (set 2), in a layout and element type.
template <typename T>
std::vector<T> pointsOf(int set, Layout layout, int ptsNum = PTS_NUM)
{
    std::vector<T> points(2 * static_cast<std::size_t>(ptsNum));
    for (int pair = 0; pair < ptsNum; ++pair)
        for (int axis = 0; axis < 2; ++axis) {
            const int shift = set == 1 ? 0 : axis == 0 ? SHIFT_X : SHIFT_Y;
            const int error = set == 2 && pair == WRONG_PAIR ? 40 : 0;
            const int idx = layout == Layout::Rows ? pair + axis * ptsNum : 2 * pair + axis;
            points[static_cast<std::size_t>(idx)] = static_cast<T>(coordinate(pair, axis) + shift + error);
        }
    return points;
}

Settings settingsOf(Layout layout, DataType pointsType, DataType tformType)
{
    Settings settings;
    settings.type = TransformType::Affine;
    settings.threshold = 0.25;
    settings.sampleNum = 500;
    settings.confidence.reset();
    settings.layout = layout;
    settings.pointsType = pointsType;
    settings.tformType = tformType;
    return settings;
}

Options seeded(bool isVariableSize = false)
{
    Options options;
    options.seed = 17;
    options.isVariableSize = isVariableSize;
    return options;
}

/// Expects the shift with every pair but the wrong one as inlier.
void expectShift(const StepResult& result, Layout layout, int ptsNum = PTS_NUM)
{
    ASSERT_TRUE(result.isFound());
    ASSERT_FALSE(result.error.has_value());
    EXPECT_EQ(result.tformRows, layout == Layout::Rows ? 3 : 2);
    EXPECT_EQ(result.tformCols, layout == Layout::Rows ? 2 : 3);
    const double expected[2][3] = {{1, 0, SHIFT_X}, {0, 1, SHIFT_Y}};
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(layout == Layout::Rows ? result.tform(j, i) : result.tform(i, j), expected[i][j], 1e-4);
    ASSERT_NE(result.inliers, nullptr);
    for (int pair = 0; pair < ptsNum; ++pair)
        EXPECT_EQ(result.inliers[pair], pair == WRONG_PAIR ? 0 : 1) << "pair " << pair;
    EXPECT_EQ(result.inlierNum, ptsNum > WRONG_PAIR ? ptsNum - 1 : ptsNum);
}

// ---- Element types, layouts and ways to hand the points in

template <typename T, DataType Points, DataType TForm>
struct TypePair {
    using Element = T;
    static constexpr DataType POINTS = Points;
    static constexpr DataType TFORM = TForm;
};

using TypePairs = ::testing::Types<
    TypePair<double, DataType::Double, DataType::Double>, TypePair<float, DataType::Single, DataType::Single>,
    TypePair<std::int8_t, DataType::Int8, DataType::Single>, TypePair<std::uint8_t, DataType::Uint8, DataType::Double>,
    TypePair<std::int16_t, DataType::Int16, DataType::Double>, TypePair<std::uint16_t, DataType::Uint16, DataType::Single>,
    TypePair<std::int32_t, DataType::Int32, DataType::Single>, TypePair<std::uint32_t, DataType::Uint32, DataType::Double>>;

struct TypePairName {
    template <typename Pair>
    static std::string GetName(int)
    {
        constexpr const char* CODES[] = {"D", "R", "S8", "U8", "S16", "U16", "S32", "U32"};
        return std::string(CODES[static_cast<int>(Pair::POINTS)]) + "_" + CODES[static_cast<int>(Pair::TFORM)];
    }
};

template <typename Pair>
class PointsTest : public ::testing::Test {};
TYPED_TEST_SUITE(PointsTest, TypePairs, TypePairName);

TYPED_TEST(PointsTest, CopiedWrittenInPlaceAndBoundGiveTheSame)
{
    using T = typename TypeParam::Element;
    EXPECT_EQ(esttform::sizeOf(TypeParam::POINTS), sizeof(T));
    for (const Layout layout : {Layout::Columns, Layout::Rows}) {
        const std::vector<T> pts1 = pointsOf<T>(1, layout);
        const std::vector<T> pts2 = pointsOf<T>(2, layout);
        const Settings settings = settingsOf(layout, TypeParam::POINTS, TypeParam::TFORM);

        Estimator copied(settings, PTS_NUM, seeded());
        expectShift(copied.step(pts1.data(), pts2.data(), PTS_NUM), layout);

        Estimator written(settings, PTS_NUM, seeded());
        std::memcpy(written.pts1Buffer(), pts1.data(), pts1.size() * sizeof(T));
        std::memcpy(written.pts2Buffer(), pts2.data(), pts2.size() * sizeof(T));
        expectShift(written.step(PTS_NUM), layout);

        Options options = seeded();
        options.pts1 = pts1.data();
        options.pts2 = pts2.data();
        Estimator bound(settings, PTS_NUM, options);
        EXPECT_EQ(bound.pts1Buffer(), nullptr);
        const StepResult& result = bound.step(PTS_NUM);
        expectShift(result, layout);
        EXPECT_EQ(result.tformType, TypeParam::TFORM);
    }
}

// ---- Steps

TEST(EstimatorTest, VariableSizeStepsStandAlone)
{
    const Settings settings = settingsOf(Layout::Rows, DataType::Double, DataType::Double);
    Estimator estimator(settings, 100, seeded(true));
    for (const int ptsNum : {PTS_NUM, 5, 11}) {
        const auto pts1 = pointsOf<double>(1, Layout::Rows, ptsNum);
        const auto pts2 = pointsOf<double>(2, Layout::Rows, ptsNum);
        const StepResult& result = estimator.step(pts1.data(), pts2.data(), ptsNum);
        EXPECT_EQ(result.ptsNum, ptsNum);
        expectShift(result, Layout::Rows, ptsNum);
    }
}

TEST(EstimatorTest, RefusedStepGivesZeroOutputsAndTheNextOneRuns)
{
    const Settings settings = settingsOf(Layout::Columns, DataType::Double, DataType::Double);
    Estimator estimator(settings, PTS_NUM, seeded(true));
    const auto pts1 = pointsOf<double>(1, Layout::Columns);
    const auto pts2 = pointsOf<double>(2, Layout::Columns);
    estimator.step(pts1.data(), pts2.data(), PTS_NUM);
    const StepResult& result = estimator.step(pts1.data(), pts2.data(), 2);
    ASSERT_TRUE(result.error.has_value());
    EXPECT_EQ(result.error->id, "pts1OrPts2TooSmall");
    EXPECT_NE(result.error->text.find("at least 3 point pairs"), std::string::npos) << result.error->text;
    EXPECT_FALSE(result.isFound());
    EXPECT_EQ(result.inlierNum, 0);
    EXPECT_EQ(result.inliers[0] + result.inliers[1] + result.inliers[11], 0);
    expectShift(estimator.step(pts1.data(), pts2.data(), PTS_NUM), Layout::Columns);
}

TEST(EstimatorTest, SizesAndArraysThatDoNotFitAreRefused)
{
    const Settings settings = settingsOf(Layout::Columns, DataType::Double, DataType::Double);
    const auto points = pointsOf<double>(1, Layout::Columns, 20);
    Estimator fixed(settings, PTS_NUM, seeded());
    Estimator variable(settings, PTS_NUM, seeded(true));
    EXPECT_EQ(fake::errorOf([&] { fixed.step(points.data(), points.data(), 11); }, ErrorKind::Usage),
              "step: got 11 point pairs, expected exactly 12");
    EXPECT_EQ(fake::errorOf([&] { variable.step(points.data(), points.data(), 13); }, ErrorKind::Usage),
              "step: got 13 point pairs, expected 0 to 12");
    EXPECT_EQ(fake::errorOf([&] { variable.step(-1); }, ErrorKind::Usage), "step: got -1 point pairs, expected 0 to 12");
    EXPECT_EQ(fake::errorOf([&] { fixed.step(points.data(), nullptr, PTS_NUM); }, ErrorKind::Usage),
              "step: got no array for pts2, expected 12 point pairs");
    auto* const own1 = static_cast<double*>(fixed.pts1Buffer());
    auto* const own2 = static_cast<double*>(fixed.pts2Buffer());
    EXPECT_EQ(fake::errorOf([&] { fixed.step(own2, own1, PTS_NUM); }, ErrorKind::Usage),
              "step: the array for pts1 lies inside the estimator's buffers; expected pts1Buffer() or another array");
    EXPECT_NE(fake::errorOf([&] { fixed.step(own1, own2 + 2 * PTS_NUM - 1, PTS_NUM); }, ErrorKind::Usage), "");
    EXPECT_NO_THROW(fixed.step(own1, own2, PTS_NUM));

    Options options;
    options.pts1 = options.pts2 = points.data();
    Estimator bound(settings, PTS_NUM, options);
    EXPECT_NE(fake::errorOf([&] { bound.step(points.data() + 2, points.data(), PTS_NUM); }, ErrorKind::Usage), "");
}

TEST(EstimatorTest, MovedFromOrFailedOneSaysSo)
{
    Options options = seeded();
    options.trace = [](std::string_view line) {
        if (line == "mdlOutputs()")
            throw std::runtime_error("disk is full");
    };
    Estimator first(Settings{}, PTS_NUM, options);
    Estimator second = std::move(first);
    const char* const moved = "estimator was moved from; open another one";
    EXPECT_EQ(fake::errorOf([&] { first.step(PTS_NUM); }, ErrorKind::Usage), moved);
    EXPECT_EQ(fake::errorOf([&] { first.setParam(3, 1); }, ErrorKind::Usage), moved);
    EXPECT_EQ(fake::errorOf([&] { second.step(PTS_NUM); }, ErrorKind::Internal), "trace sink failed: disk is full");
    EXPECT_EQ(fake::errorOf([&] { second.step(PTS_NUM); }, ErrorKind::Usage),
              "the estimator has failed before; open another one");
}

TEST(EstimatorTest, WarningsOfAStepAreCountedAndDoNotReturn)
{
    Settings settings = settingsOf(Layout::Columns, DataType::Double, DataType::Double);
    settings.type = TransformType::Projective;
    settings.sampleNum = 20000;
    Estimator estimator(settings, PTS_NUM, seeded(true));
    // Four distinct pairs of five are often missed by ten draws per position; of twelve hardly ever in one sampling.
    const auto points = pointsOf<double>(1, Layout::Columns);
    const StepResult& result = estimator.step(points.data(), points.data(), 5);
    ASSERT_EQ(result.warnings.size(), 1U);
    EXPECT_EQ(result.warnings[0].id, "invalidRandomSamples");
    EXPECT_GT(result.warnings[0].count, 1U);
    EXPECT_EQ(estimator.step(points.data(), points.data(), 4).warnings.size(), 0U);
}

TEST(EstimatorTest, OneLeastSquaresFitHasNoInliers)
{
    Settings settings = settingsOf(Layout::Columns, DataType::Double, DataType::Double);
    settings.isRobust = false;
    Estimator estimator(settings, PTS_NUM, seeded());
    const auto points = pointsOf<double>(1, Layout::Columns);
    const StepResult& result = estimator.step(points.data(), points.data(), PTS_NUM);
    EXPECT_TRUE(result.isFound());
    EXPECT_EQ(result.inliers, nullptr);
    EXPECT_EQ(result.inlierNum, 0);
}

TEST(EstimatorTest, SameSeedSameBits)
{
    Settings settings = settingsOf(Layout::Columns, DataType::Double, DataType::Double);
    settings.sampleNum = 3;
    settings.isRefineIteratively = false;
    settings.threshold = 1e6;
    const auto pts1 = pointsOf<double>(1, Layout::Columns);
    const auto pts2 = pointsOf<double>(2, Layout::Columns);
    std::vector<double> tforms[3];
    for (int run = 0; run < 2; ++run) {
        Estimator estimator(settings, PTS_NUM, seeded());
        for (int step = 0; step < 2; ++step) {
            estimator.seed(99);
            const auto* const data = static_cast<const double*>(estimator.step(pts1.data(), pts2.data(), PTS_NUM).tformData);
            tforms[run].insert(tforms[run].end(), data, data + 6);
        }
    }
    EXPECT_EQ(tforms[0], tforms[1]);
    EXPECT_TRUE(std::equal(tforms[0].begin(), tforms[0].begin() + 6, tforms[0].begin() + 6));
}

// ---- Parameters

TEST(EstimatorTest, TunableThresholdChangesTheInliers)
{
    Estimator estimator(settingsOf(Layout::Columns, DataType::Double, DataType::Double), PTS_NUM, seeded());
    const auto pts1 = pointsOf<double>(1, Layout::Columns);
    const auto pts2 = pointsOf<double>(2, Layout::Columns);
    EXPECT_EQ(estimator.step(pts1.data(), pts2.data(), PTS_NUM).inlierNum, PTS_NUM - 1);
    estimator.setParam(4, 1e6);
    EXPECT_EQ(estimator.params()[4], 1e6);
    EXPECT_EQ(estimator.step(pts1.data(), pts2.data(), PTS_NUM).inlierNum, PTS_NUM);

    EXPECT_EQ(fake::errorOf([&] { estimator.setParam(4, -1); }, ErrorKind::Usage),
              "disThrAffine: got -1, expected a squared distance of 0 or more");
    EXPECT_EQ(fake::errorOf([&] { estimator.setParam(0, 3); }, ErrorKind::Usage),
              "transformType: cannot change while the block runs (not tunable); open the block anew with it");
    EXPECT_EQ(fake::errorOf([&] { estimator.setParam(3, 1); }, ErrorKind::Usage),
              "disThrProjective: cannot change while the block runs (tunable only when transformType is 3 and robust "
              "estimation uses the threshold); open the block anew with it");
    EXPECT_NE(fake::errorOf([&] { estimator.setParam(18, 1); }, ErrorKind::Usage), "");
    EXPECT_EQ(estimator.params()[4], 1e6);
    EXPECT_EQ(estimator.step(pts1.data(), pts2.data(), PTS_NUM).inlierNum, PTS_NUM);
}

TEST(ParamTableTest, DefaultsAreThoseOfSettings)
{
    const esttform::Params params = toParams(Settings{});
    for (const esttform::ParamInfo& info : esttform::paramTable())
        EXPECT_EQ(params[static_cast<std::size_t>(info.index)], info.defaultValue) << info.name;
}

TEST(ParamTableTest, SettingsReachTheirParameters)
{
    Settings settings;
    settings.type = TransformType::Similarity;
    settings.isRobust = false;
    settings.method = esttform::Method::Median;
    settings.threshold = 0.5;
    settings.sampleNum = 123;
    settings.confidence.reset();
    settings.stopAtInliers = 75;
    settings.isRefineIteratively = false;
    settings.isOutputInliers = false;
    settings.sampling = esttform::Sampling::Cyclic;
    settings.layout = Layout::Rows;
    settings.pointsType = DataType::Int16;
    settings.tformType = DataType::Single;
    const esttform::Params expected{1, 0, 2, 0.5, 0.5, 1, 123, 123, 99.9, 1, 75, 0, 0, 1, 1, 0, 0, 1};
    EXPECT_EQ(toParams(settings), expected);
    settings.confidence = 80;
    EXPECT_EQ(toParams(settings)[5], 2);
    EXPECT_EQ(toParams(settings)[8], 80);
}

struct OpenCase : fake::NamedCase {
    int param;
    double value;
    int ptsNum;
    const char* text;
};

const OpenCase OPEN_CASES[] = {
    {{"confidence"}, 8, 140, 12, "desiredConfidence: got 140, expected a percentage from 0 to 100"},
    {{"type"}, 0, 4, 12, "transformType: got 4, expected a whole number from 1 to 3"},
    {{"reserved"}, 13, 0, 12, "reserved13: got 0, expected a whole number from 1 to 3"},
    {{"threshold"}, 3, -2, 12, "disThrProjective: got -2, expected a squared distance of 0 or more"},
    {{"samplings"}, 6, 2.5, 12, "maxRandomSampling: got 2.5, expected a whole number of 0 or more"},
    {{"tooFewPoints"}, 15, 0, 3,
     "Pts1 and Pts2 have too few points: the transformation type needs at least 4 point pairs"},
    {{"negativeNum"}, 15, 0, -3, "maxPtsNum: got -3 point pairs, expected 0 to 119304647"},
    {{"hugeNum"}, 15, 0, 119304648, "maxPtsNum: got 119304648 point pairs, expected 0 to 119304647"},
};

class OpenTest : public ::testing::TestWithParam<OpenCase> {};

TEST_P(OpenTest, BadValueIsRefusedWithItsName)
{
    esttform::Params params = toParams(Settings{});
    params[static_cast<std::size_t>(GetParam().param)] = GetParam().value;
    EXPECT_EQ(fake::errorOf([&] { Estimator(params, DataType::Double, GetParam().ptsNum); }, ErrorKind::Usage),
              GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(, OpenTest, ::testing::ValuesIn(OPEN_CASES), fake::CaseName{});

TEST(EstimatorTest, TypesOfPointsAndTransformationMustAgree)
{
    Settings settings;
    settings.pointsType = DataType::Single;
    EXPECT_EQ(fake::errorOf([&] { toParams(settings); }, ErrorKind::Usage),
              "tformType: got double, expected single: single points give a single transformation");
    settings.pointsType = DataType::Uint8;
    settings.tformType = DataType::Int8;
    EXPECT_EQ(fake::errorOf([&] { toParams(settings); }, ErrorKind::Usage),
              "tformType: got data type 2, expected double (0) or single (1)");
    const double point = 0;
    Options options;
    options.pts2 = &point;
    EXPECT_EQ(fake::errorOf([&] { Estimator(Settings{}, 12, options); }, ErrorKind::Usage),
              "pts1 and pts2: got one array, expected both or none");
}

TEST(EstimatorTest, RawLayoutFlagIsReadAsTheBlockReadsIt)
{
    esttform::Params params = toParams(Settings{});
    const struct {
        double flag;
        Layout layout;
    } rows[] = {{0.5, Layout::Columns}, {1.9, Layout::Rows}, {256, Layout::Columns}, {-1, Layout::Rows}};
    for (const auto& row : rows) {
        params[17] = row.flag;
        const Estimator estimator(params, DataType::Double, 12);
        EXPECT_EQ(estimator.layout(), row.layout) << row.flag;
    }
}

}  // namespace
