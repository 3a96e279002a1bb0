// Picture: the pixels of an image as plain numbers, so that drawing and feature matching need not share a library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// Pixels row by row from the top, 0xRRGGBB each. The centre of the first one is at (0, 0).
struct Picture {
    std::string name;                   ///< for titles and messages
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    bool contains(double x, double y) const noexcept
    {
        return x >= -0.5 && y >= -0.5 && x <= width - 0.5 && y <= height - 0.5;
    }
};

/// Reads a PNG file; transparent places become white.
///
/// @throws Failure  the file cannot be read, is no PNG (naming JPEG and others by their kind) or is damaged
Picture readPng(const std::string& path);

}  // namespace esttform::app
