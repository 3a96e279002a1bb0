// Vision: what the program needs of a computer-vision library, in plain types. The library is loaded only when it is asked
// for: it takes ten times as long to load as the rest of the program takes to run.
#pragma once

#include "geometry/point_map.h"
#include "matches/points.h"
#include "plot/picture.h"

#include <string>
#include <vector>

namespace esttform::app {

struct FeatureOptions {
    int featureMaxNum = 5000;            ///< the strongest ones of a picture
    double ratioMax = 0.8;               ///< best distance over second best, of a match that is kept
    double pixelMaxNum = 2e6;            ///< a larger picture is scaled down for detection; points count in the full one
};

struct FeatureMatches {
    std::vector<Pair> pairs;             ///< sorted by coordinates
    int featureNum1 = 0, featureNum2 = 0;
};

/// Failures of these functions are std::runtime_error with the library's own reason.
class Vision {
public:
    virtual ~Vision() = default;

    /// Reads any format that the library knows, colours kept, turned as the camera noted.
    virtual Picture read(const std::string& path) = 0;
    /// Features of both pictures and their best matches. Nothing is random: the same pictures give the same matches.
    virtual FeatureMatches match(const Picture& first, const Picture& second, const FeatureOptions& options) = 0;
    /// The second picture as the first one sees it: at (x, y) what `second` shows at map * (x, y, 1); black outside.
    virtual Picture warped(const Picture& second, const PointMap& map, int width, int height) = 0;
    /// A file's bytes. @param extension  ".png", ".jpg" or what else the library knows
    virtual std::string encoded(const Picture& picture, const std::string& extension) = 0;
};

/// Loads the library.
///
/// @throws Failure  the program was built without it, or it cannot be loaded
Vision& loadVision();

}  // namespace esttform::app
