#include "check/case.h"

#include "matches/points.h"

#include <fmt/format.h>

namespace esttform::check {

namespace {

constexpr const char* TYPE_TEXTS[] = {"", "similarity", "affine", "projective"};

std::string schemeText(const Case& c)
{
    if (!c.isRobust())
        return "all pairs";
    return c.params[METHOD] == 2.0 ? "median" : c.params[SAMPLE_NUM_SOURCE] == 1.0 ? "fixed number" : "confidence";
}

}  // namespace

DataType Case::tformType() const
{
    if (isReal())
        return pointsType;
    return params[TFORM_TYPE_FOR_INTEGERS] == 1.0 ? DataType::Single : DataType::Double;
}

blockhost::Dims Case::sizeOf(int pairNum) const
{
    return layout() == Layout::Rows ? blockhost::Dims{pairNum, 2} : blockhost::Dims{2, pairNum};
}

std::string Case::text() const
{
    return fmt::format("{}, {}, {}, {}, {} pairs{}{}", TYPE_TEXTS[transformType()], layout() == Layout::Rows ? "rows" : "columns",
                       app::typeName(pointsType), schemeText(*this), ptsNum, isVariable ? ", variable size" : "",
                       isRobust() && !hasMask() ? ", no mask" : "");
}

Case makeCase(int transformType, Layout layout, Scheme scheme, DataType pointsType, int ptsNum, bool isVariable)
{
    Settings s;
    s.type = static_cast<TransformType>(transformType);
    s.layout = layout;
    s.isRobust = scheme != Scheme::AllPairs;
    s.method = scheme == Scheme::Median ? Method::Median : Method::Threshold;
    s.sampleNum = 60;
    s.confidence.reset();
    if (scheme == Scheme::Confidence) {
        s.confidence = 99.0;
        s.stopAtInliers = 90.0;
    }
    Case c;
    c.params = toParams(s);
    c.pointsType = pointsType;
    c.ptsNum = ptsNum;
    c.isVariable = isVariable;
    return c;
}

std::vector<Case> variety()
{
    std::vector<Case> cases;
    for (int type = 1; type <= 3; ++type)
        for (const Layout layout : {Layout::Rows, Layout::Columns})
            for (int scheme = 0; scheme < SCHEME_NUM; ++scheme)
                for (const bool isVariable : {false, true}) {
                    const int i = static_cast<int>(cases.size());
                    cases.push_back(makeCase(type, layout, static_cast<Scheme>(scheme), static_cast<DataType>((i * 3 + type) % 8),
                                             9 + i % 5, isVariable));
                    cases.back().params[TFORM_TYPE_FOR_INTEGERS] = 1 + type % 2;
                    cases.back().params[RANDOM_SAMPLING] = i % 7 == 0 ? 0 : 1;
                }
    return cases;
}

Case randomCase(Random& random)
{
    const int type = 1 + random.below(3);
    const auto layout = static_cast<Layout>(random.below(2));
    const auto scheme = static_cast<Scheme>(random.below(SCHEME_NUM));
    const auto pointsType = static_cast<DataType>(random.below(8));
    const int ptsNum = (type + 1) * (1 + random.below(random.below(2) == 0 ? 3 : 40));
    Case c = makeCase(type, layout, scheme, pointsType, ptsNum, random.below(2) == 0);
    c.params[DIS_THR_PROJECTIVE] = c.params[DIS_THR_AFFINE] = random.below(4) == 0 ? 0.0 : random.between(0.0, 30.0);
    c.params[MAX_RANDOM_SAMPLING] = c.params[NUM_RANDOM_SAMPLING] = random.below(4) == 0 ? 0.0 : random.below(200);
    c.params[DESIRED_CONFIDENCE] = random.between(0.0, 100.0);
    c.params[INLIER_PERCENTAGE] = random.between(0.0, 100.0);
    for (const DialogParam flag : {BREAK_BY_PERCENTAGE, REFINE_ITERATIVELY, OUTPUT_INLIERS, RANDOM_SAMPLING})
        c.params[flag] = random.below(2);
    c.params[TFORM_TYPE_FOR_INTEGERS] = 1 + random.below(2);
    return c;
}

blockhost::Signal signalOf(const Case& c)
{
    blockhost::Signal signal;
    signal.dims = c.sizeOf(c.ptsNum);
    signal.typeId = static_cast<int>(c.pointsType);
    signal.mode = c.isVariable ? sysobj::DIMS_MODE_VARIABLE : sysobj::DIMS_MODE_FIXED;
    return signal;
}

blockhost::BlockSetup openSetup(const std::string& path, const Params& params)
{
    blockhost::BlockSetup setup;
    setup.libraryPath = path;
    setup.params.assign(params.begin(), params.end());
    for (const ParamInfo& info : paramTable())
        setup.paramLabels.push_back({info.name, info.tunable, info.meaning});
    return setup;
}

blockhost::BlockSetup setupOf(const std::string& path, const Case& c)
{
    blockhost::BlockSetup setup = openSetup(path, c.params);
    setup.inputs = {signalOf(c), signalOf(c)};
    return setup;
}

}  // namespace esttform::check
