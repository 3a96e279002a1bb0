// Vision by OpenCV, as a library of its own.
#include "registering/vision.h"

#include <opencv2/core/utils/logger.hpp>
#include <opencv2/features2d.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>

namespace esttform::app {

namespace {

/// Colour view of a picture's own pixels, 4 bytes each with blue first.
cv::Mat matOf(const Picture& picture)
{
    static_assert(sizeof(std::uint32_t) == 4, "four bytes a pixel");
    return {picture.height, picture.width, CV_8UC4, const_cast<std::uint32_t*>(picture.pixels.data())};
}

/// @param colours  8 bits, 3 channels
Picture pictureOf(const cv::Mat& colours, const std::string& name)
{
    Picture picture{name, colours.cols, colours.rows, {}};
    picture.pixels.resize(static_cast<std::size_t>(colours.rows) * static_cast<std::size_t>(colours.cols));
    std::size_t i = 0;
    for (int y = 0; y < colours.rows; ++y)
        for (int x = 0; x < colours.cols; ++x) {
            const auto& c = colours.at<cv::Vec3b>(y, x);
            picture.pixels[i++] = std::uint32_t{c[2]} << 16 | std::uint32_t{c[1]} << 8 | std::uint32_t{c[0]};
        }
    return picture;
}

/// OpenCV doubles a picture before it looks for features, and halves their places without regard to where the centres of the
/// pixels lie: they are this much too far to the right and below, in pixels of the picture that is searched.
constexpr double SIFT_OFFSET = 0.25;

struct Features {
    std::vector<cv::KeyPoint> points;    ///< in pixels of the full picture
    cv::Mat descriptors;
};

/// SIFT: of the detectors at hand the one that survives changes of scale, rotation and view best, with places finer than a
/// pixel. It is the slowest, too, which the limits on pixels and features keep in bounds.
Features featuresOf(const Picture& picture, const FeatureOptions& options)
{
    cv::Mat grey;
    cv::cvtColor(matOf(picture), grey, cv::COLOR_BGRA2GRAY);
    const double pixelNum = static_cast<double>(grey.cols) * grey.rows;
    const double scale = std::min(1.0, std::sqrt(options.pixelMaxNum / pixelNum));
    if (scale < 1.0)
        cv::resize(grey, grey, cv::Size(), scale, scale, cv::INTER_AREA);
    const double xScale = static_cast<double>(picture.width) / grey.cols, yScale = static_cast<double>(picture.height) / grey.rows;
    Features features;
    cv::SIFT::create(options.featureMaxNum)->detectAndCompute(grey, cv::noArray(), features.points, features.descriptors);
    for (cv::KeyPoint& point : features.points) {
        point.pt.x = static_cast<float>((double(point.pt.x) - SIFT_OFFSET + 0.5) * xScale - 0.5);   // pixels count from centres
        point.pt.y = static_cast<float>((double(point.pt.y) - SIFT_OFFSET + 0.5) * yScale - 0.5);
    }
    return features;
}

/// Matches that are clearly better than the second best, at most one for each feature of the second picture.
std::vector<cv::DMatch> clearMatches(const cv::Mat& descriptors1, const cv::Mat& descriptors2, double ratioMax)
{
    constexpr int NEIGHBOUR_NUM = 2;
    std::map<int, cv::DMatch> bestOfSecond;
    if (descriptors1.empty() || descriptors2.rows < NEIGHBOUR_NUM)
        return {};
    std::vector<std::vector<cv::DMatch>> neighbours;
    cv::BFMatcher(cv::NORM_L2).knnMatch(descriptors1, descriptors2, neighbours, NEIGHBOUR_NUM);
    for (const auto& n : neighbours) {
        if (!(double(n[0].distance) < ratioMax * double(n[1].distance)))
            continue;
        const auto place = bestOfSecond.emplace(n[0].trainIdx, n[0]).first;
        if (n[0].distance < place->second.distance)
            place->second = n[0];
    }
    std::vector<cv::DMatch> matches;
    for (const auto& entry : bestOfSecond)
        matches.push_back(entry.second);
    return matches;
}

class OpenCvVision : public Vision {
public:
    Picture read(const std::string& path) override
    {
        cv::Mat colours = cv::imread(path, cv::IMREAD_COLOR | cv::IMREAD_ANYDEPTH);
        if (colours.depth() == CV_16U) {
            double highest = 0.0;                            // of cameras with 10 or 12 bits far below the highest number
            cv::minMaxIdx(colours.reshape(1), nullptr, &highest);
            colours.convertTo(colours, CV_8U, highest > 0.0 ? 255.0 / highest : 1.0);
        } else if (colours.depth() != CV_8U) {
            colours = cv::imread(path, cv::IMREAD_COLOR);
        }
        if (colours.empty())
            throw std::runtime_error("not a picture in a format that is known, or damaged");
        return pictureOf(colours, path);
    }

    FeatureMatches match(const Picture& first, const Picture& second, const FeatureOptions& options) override
    {
        const Features f1 = featuresOf(first, options), f2 = featuresOf(second, options);
        FeatureMatches matches;
        matches.featureNum1 = static_cast<int>(f1.points.size());
        matches.featureNum2 = static_cast<int>(f2.points.size());
        for (const cv::DMatch& m : clearMatches(f1.descriptors, f2.descriptors, options.ratioMax)) {
            const cv::Point2f p1 = f1.points[static_cast<std::size_t>(m.queryIdx)].pt;
            const cv::Point2f p2 = f2.points[static_cast<std::size_t>(m.trainIdx)].pt;
            matches.pairs.push_back({double(p1.x), double(p1.y), double(p2.x), double(p2.y)});
        }
        // A feature with two directions gives a pair twice, which would count as two votes for it.
        std::sort(matches.pairs.begin(), matches.pairs.end());
        matches.pairs.erase(std::unique(matches.pairs.begin(), matches.pairs.end()), matches.pairs.end());
        return matches;
    }

    Picture warped(const Picture& second, const PointMap& map, int width, int height) override
    {
        cv::Mat colours, target;
        cv::cvtColor(matOf(second), colours, cv::COLOR_BGRA2BGR);
        const cv::Mat matrix(3, 3, CV_64F, const_cast<double*>(map.m.data()));
        cv::warpPerspective(colours, target, matrix, cv::Size(width, height), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);
        return pictureOf(target, second.name);
    }

    std::string encoded(const Picture& picture, const std::string& extension) override
    {
        cv::Mat colours;
        cv::cvtColor(matOf(picture), colours, cv::COLOR_BGRA2BGR);
        std::vector<unsigned char> bytes;
        if (!cv::imencode(extension, colours, bytes))
            throw std::runtime_error("the picture cannot be encoded");
        return {bytes.begin(), bytes.end()};
    }
};

}  // namespace

}  // namespace esttform::app

extern "C" __attribute__((visibility("default"))) esttform::app::Vision* esttformVision()
{
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);   // failures are thrown
    static esttform::app::OpenCvVision vision;
    return &vision;
}
