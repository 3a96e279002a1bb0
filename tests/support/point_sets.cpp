#include "point_sets.h"

#include <Eigen/Geometry>
#include <Eigen/LU>

namespace testsupport {

std::string PointSetSpec::describe() const
{
    return "seed " + std::to_string(seed) + ", sampleSize " + std::to_string(sampleSize) +
           (isInRows ? ", rows, " : ", columns, ") + std::to_string(ptsNum) + " points";
}

Eigen::Matrix3d makeTransformation(int sampleSize, SeededRandom& random)
{
    Eigen::Matrix3d H = Eigen::Matrix3d::Identity();
    const Eigen::Rotation2Dd turn(random.uniform(-3.1, 3.1));
    H.topLeftCorner<2, 2>() = random.uniform(0.4, 0.6) * turn.toRotationMatrix();
    H(0, 2) = random.uniform(-5.0, 5.0);
    H(1, 2) = random.uniform(-5.0, 5.0);
    if (sampleSize > 2) H.col(1) = random.uniform(0.8, 1.0) * H.col(1) + random.uniform(-0.2, 0.2) * H.col(0);
    if (sampleSize > 3) H.row(2) << random.uniform(-0.1, 0.1) / FIELD, random.uniform(-0.1, 0.1) / FIELD, 1.0;
    Eigen::Matrix3d toCentre = Eigen::Matrix3d::Identity();
    toCentre.topRightCorner<2, 1>().setConstant(-FIELD / 2);
    H = toCentre.inverse() * H * toCentre;
    return H / H(2, 2);
}

std::vector<double> compactOf(int sampleSize, const Eigen::Matrix3d& H)
{
    std::vector<double> c = {H(0, 0), H(0, 1), H(0, 2), H(1, 0), H(1, 1), H(1, 2), H(2, 0), H(2, 1), 1.0};
    if (sampleSize == 2) c = {H(0, 0), H(0, 1), H(0, 2), H(1, 2), 1.0};
    if (sampleSize == 3) c.erase(c.begin() + 6, c.begin() + 8);
    return c;
}

Eigen::Matrix3d matrixOf(int sampleSize, const std::vector<double>& c)
{
    Eigen::Matrix3d H = Eigen::Matrix3d::Identity();
    if (sampleSize == 2) H.topRows<2>() << c[0], c[1], c[2], -c[1], c[0], c[3];
    for (int i = 0; sampleSize > 2 && i < 2 * sampleSize; ++i) H(i / 3, i % 3) = c[std::size_t(i)];
    return H;
}

Eigen::Vector2d mapPoint(const Eigen::Matrix3d& H, const Eigen::Vector2d& point)
{
    return (H * point.homogeneous()).hnormalized();
}

PointSet<double> makePointSet(const PointSetSpec& spec, double (*rounding)(double))
{
    SeededRandom random(spec.seed);
    const auto elementNum = static_cast<std::size_t>(2 * spec.ptsNum);
    PointSet<double> set{spec, makeTransformation(spec.sampleSize, random), std::vector<double>(elementNum),
                         std::vector<double>(elementNum)};
    const auto put = [&spec, rounding](std::vector<double>& pts, int i, const Eigen::Vector2d& point) {
        for (int c = 0; c < 2; ++c) pts[elementOf(spec.isInRows, spec.ptsNum, i, c)] = rounding(point(c));
    };
    const auto randomPoint = [&random](double low, double high) {
        const double a = random.uniform(low, high);
        return Eigen::Vector2d(a, random.uniform(low, high));
    };
    for (int i = 0; i < spec.ptsNum; ++i) {
        const Eigen::Vector2d p = FIELD * randomPoint(0.0, 1.0);
        put(set.pts1, i, i < 4 ? (0.25 * p + 0.75 * FIELD * Eigen::Vector2d(i % 2, i / 2)).eval() : p);
        const bool isOutlier = i >= spec.ptsNum - spec.outlierNum;
        const Eigen::Vector2d match = mapPoint(set.H, pointOf(set.pts1, spec.isInRows, spec.ptsNum, i));
        put(set.pts2, i, isOutlier ? randomPoint(0.0, FIELD) : (match + randomPoint(-spec.noise, spec.noise)).eval());
    }
    return set;
}

}  // namespace testsupport
