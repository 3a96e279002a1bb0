// An image as the background of a frame: grey, faded, and no finer than the page shows.
#pragma once

#include "plot/picture.h"
#include "plot/plot_frame.h"

namespace esttform::app {

/// Draws an image at its place in the frame's plane.
void drawPicture(PlotCanvas& canvas, const PlotFrame& frame, const Picture& picture);

/// The part of the plane that an image covers.
PlotBox boxOf(const Picture& picture) noexcept;

}  // namespace esttform::app
