// Pictures for tests, drawn and written without the program.
#pragma once

#include "plot/picture.h"

#include <cairo.h>

#include <array>
#include <string>

/// An affine map of the plane, row by row: x2 = m[0]*x + m[1]*y + m[2], y2 = m[3]*x + m[4]*y + m[5].
using AffineMap = std::array<double, 6>;

/// Draws a scene of random discs and boxes, moved by a map, and writes it as PNG. The scene is always the same.
void writeScene(const std::string& path, int width, int height, const AffineMap& map);

/// Writes a PNG of one grey, 0 to 1.
void writeBlank(const std::string& path, int width, int height, double grey);

/// The pixels of PNG bytes.
esttform::app::Picture pictureOfPng(const std::string& bytes);
