// The pictures of 'register': reading them with messages of our own, matching, and laying one over the other.
#pragma once

#include "registering/vision.h"

#include <initializer_list>
#include <memory>
#include <string>

namespace esttform::app {

/// @throws Failure  the file cannot be opened, is a folder, or is no picture
std::shared_ptr<const Picture> pictureFrom(Vision& vision, const std::string& path);

/// As Vision::match, with its failures as Failure: as a rule memory ran out.
FeatureMatches matchesOf(Vision& vision, const Picture& first, const Picture& second, const FeatureOptions& options);

/// "1 match", "2 matches".
std::string countedMatches(std::size_t num);

/// Refuses pictures that are larger than the library warps.
void checkWarpable(std::initializer_list<const Picture*> pictures);

/// The first picture and the warped second one, half and half where the second has something to show.
Picture blended(const Picture& first, const Picture& warped, const Picture& second, const PointMap& map);

/// Refuses a name that ends in something else than .png, .jpg or .jpeg.
void checkPictureName(const char* option, const std::string& path);

}  // namespace esttform::app
