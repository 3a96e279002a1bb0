#include "registering/register_pictures.h"

#include "failure.h"
#include "number_text.h"
#include "plot/plot.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace esttform::app {

std::shared_ptr<const Picture> pictureFrom(Vision& vision, const std::string& path)
{
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    errno = file == nullptr ? errno : 0;
    if (file != nullptr && std::fgetc(file) == EOF && errno == 0) {
        std::fclose(file);
        throw Failure(fmt::format("{}: empty, expected a picture", path));
    }
    const int reason = errno;
    if (file != nullptr)
        std::fclose(file);
    if (reason != 0)
        throw Failure(fmt::format("{}: cannot read: {}", path, std::strerror(reason)));
    try {
        return std::make_shared<const Picture>(vision.read(path));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        throw Failure(fmt::format("{}: {}", path, e.what()));
    }
}

FeatureMatches matchesOf(Vision& vision, const Picture& first, const Picture& second, const FeatureOptions& options)
try {
    return vision.match(first, second, options);
} catch (const std::exception& e) {
    throw Failure(fmt::format("{}, {}: cannot match features: {}", first.name, second.name, e.what()), ExitCode::OurFault);
}

std::string countedMatches(std::size_t num)
{
    return fmt::format("{} match{}", num, num == 1 ? "" : "es");
}

void checkWarpable(std::initializer_list<const Picture*> pictures)
{
    constexpr int SIDE_MAX = 32766;
    for (const Picture* const picture : pictures)
        if (picture->width > SIDE_MAX || picture->height > SIDE_MAX)
            throw Failure(fmt::format("{}: {} x {} pixels, --warped and --blended take at most {} a side", picture->name,
                                      picture->width, picture->height, SIDE_MAX));
}

Picture blended(const Picture& first, const Picture& warped, const Picture& second, const PointMap& map)
{
    Picture picture = first;
    std::size_t i = 0;
    for (int y = 0; y < first.height; ++y)
        for (int x = 0; x < first.width; ++x, ++i) {
            const auto [xw, yw, w] = map.apply(x, y);
            constexpr std::uint32_t HIGH_BITS = 0xfefefeU;         // of each colour: halves do not run into the neighbour
            const double x2 = xw / w, y2 = yw / w;
            // Beyond the horizon (w < 0) there is no second picture. Beyond the outermost pixels' centres the warped picture fades to black.
            if (w > 0.0 && x2 >= 0.0 && y2 >= 0.0 && x2 <= second.width - 1.0 && y2 <= second.height - 1.0)
                picture.pixels[i] = ((first.pixels[i] & HIGH_BITS) >> 1) + ((warped.pixels[i] & HIGH_BITS) >> 1);
        }
    return picture;
}

void checkPictureName(const char* option, const std::string& path)
{
    const std::string extension = extensionOf(path);
    if (extension != ".png" && extension != ".jpg" && extension != ".jpeg")
        throw Failure(fmt::format("{}: got {}, expected a name that ends in .png or .jpg", option, inQuotes(path)));
}

}  // namespace esttform::app
