#include "plot/plot_matches.h"

#include "number_text.h"
#include "plot/plot_picture.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

constexpr FrameLimits ONE_FRAME{600.0, 680.0, 160.0, 520.0};
constexpr double PAIR_WIDTH = 640.0, PAIR_MIN_HEIGHT = 120.0, PAIR_MAX_HEIGHT = 480.0, PAIR_GAP = 14.0;
/// Ratios of width to height between which a frame of two is kept.
constexpr double SLIMMEST = 1.0 / 3.0, WIDEST = 3.0;
constexpr double HEADING_HEIGHT = 18.0;
constexpr std::size_t FEW_MAX_NUM = 300;  ///< pairs whose marks are drawn above the outlines

/// Lines of a class; across two images they are long and hide more.
constexpr std::int64_t LINE_MAX_NUM = 800, LONG_LINE_MAX_NUM = 100;

constexpr double OUTLINE_WIDTH = 1.8, HALO_WIDTH = 3.4, FIRST_OUTLINE_WIDTH = 1.2;
constexpr double FIRST_OUTLINE_DASHES[] = {6.0, 3.0};

/// The part of the plane that a set of points and its image cover.
PlotBox boxOfSetAndImage(const std::vector<Pair>& pairs, int setIdx, const Picture* image)
{
    const PlotBox points = boxOfSet(pairs, setIdx);
    return image != nullptr ? united(points, boxOf(*image)) : points;
}

double aspectOf(const PlotBox& view) noexcept
{
    return std::clamp(view.width() / view.height(), SLIMMEST, WIDEST);
}

void traceOutline(cairo_t* cr, const PlotFrame& frame, const Polyline& outline)
{
    // Far parts are cut to what the drawing library can hold; the clip hides the cut.
    constexpr double FAR = 1e4;
    cairo_new_sub_path(cr);
    for (const PlotPoint& p : outline) {
        const PlotPoint q = frame.at(p[0], p[1]);
        cairo_line_to(cr, std::clamp(q[0], -FAR, FAR), std::clamp(q[1], -FAR, FAR));
    }
}

void strokeFirstOutline(cairo_t* cr)
{
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    cairo_set_line_width(cr, FIRST_OUTLINE_WIDTH);
    cairo_set_dash(cr, FIRST_OUTLINE_DASHES, 2, 0.0);
    cairo_stroke(cr);
    cairo_set_dash(cr, nullptr, 0, 0.0);
}

void strokeCarriedOutline(cairo_t* cr)
{
    cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);             // a halo, so that the line shows on any image
    cairo_set_line_width(cr, HALO_WIDTH);
    cairo_stroke_preserve(cr);
    cairo_set_source_rgb(cr, 0.0, 0.0, 0.0);
    cairo_set_line_width(cr, OUTLINE_WIDTH);
    cairo_stroke(cr);
}

LegendEntry lineEntry(const std::string& text, void (*stroke)(cairo_t*), bool isOnNewLine)
{
    return {text,
            [stroke](cairo_t* cr) {
                cairo_move_to(cr, -0.5 * LEGEND_SAMPLE_WIDTH + 4.0, 0.0);
                cairo_line_to(cr, 0.5 * LEGEND_SAMPLE_WIDTH - 4.0, 0.0);
                stroke(cr);
            },
            isOnNewLine};
}

void drawHeading(PlotCanvas& canvas, const PlotFrame& frame, const std::string& which, const Picture& image)
{
    canvas.setFont(HEADING_SIZE, true);
    cairo_set_source_rgb(canvas.context(), 0.0, 0.0, 0.0);
    canvas.drawText(canvas.fitted(which + ": " + fileNameOf(image.name), frame.width), frame.left, frame.top - 6.0);
}

}  // namespace

/// What the frames show, before there is a place for them.
struct MatchPanel::Content {
    PlotBox outlined;
    std::vector<Polyline> carried;
    bool isSideBySide;
    PlotFrame first, second;

    Content(const PlotScene& scene, double top, PlotCanvas& measure)
        : outlined(scene.image1 ? boxOf(*scene.image1) : boxOfSet(scene.pairs, 0)),
          carried(scene.map ? carriedOutline(outlined, *scene.map) : std::vector<Polyline>()),
          isSideBySide(scene.image1 && scene.image2)
    {
        const PlotBox firstBox = boxOfSetAndImage(scene.pairs, 0, scene.image1.get());
        const PlotBox secondBox = boxOfSetAndImage(scene.pairs, 1, scene.image2.get());
        if (!isSideBySide) {
            first = second = frameOf(viewOf(firstBox, secondBox, carried), ONE_FRAME, 0.0, top, measure);
            return;
        }
        const PlotBox firstView = viewOf(firstBox, firstBox, {}), secondView = viewOf(secondBox, secondBox, carried);
        const double wantedHeight = PAIR_WIDTH / (aspectOf(firstView) + aspectOf(secondView));
        const double height = std::clamp(wantedHeight, PAIR_MIN_HEIGHT, PAIR_MAX_HEIGHT);
        const auto limits = [height](const PlotBox& view) {
            return FrameLimits{aspectOf(view) * height, aspectOf(view) * height, height, height};
        };
        first = frameOf(firstView, limits(firstView), 0.0, top + HEADING_HEIGHT, measure);
        second = frameOf(secondView, limits(secondView), first.right(), top + HEADING_HEIGHT, measure);
        second.isYAxisRight = true;                      // the lines of the matches come from the left
        second.left = first.right() + PAIR_GAP;
    }
};

MatchPanel::MatchPanel(const PlotScene& scene, double top, PlotCanvas& measure)
    : MatchPanel(scene, Content(scene, top, measure), measure)
{
}

MatchPanel::MatchPanel(const PlotScene& scene, const Content& content, PlotCanvas& measure)
    : mScene(scene), mIsSideBySide(content.isSideBySide), mOutlined(content.outlined), mCarried(content.carried),
      mFirst(content.first), mSecond(content.second),
      mMarks(scene, mFirst, mSecond, mIsSideBySide ? LONG_LINE_MAX_NUM : LINE_MAX_NUM),
      mRight(mSecond.right() + (mIsSideBySide ? axisRoom(mSecond.yTicks, measure) : 0.0)),
      mLegendTop(mFirst.bottom() + AXIS_HEIGHT), mLegendHeight(legendHeight(measure, legend(), right() - left()))
{
}

std::vector<LegendEntry> MatchPanel::legend() const
{
    std::vector<LegendEntry> entries;
    for (const MarkClass* const markClass : mMarks.classes())
        if (markClass->pairNum > 0)
            entries.push_back({markClass->legendText(), [markClass, this](cairo_t* cr) {
                                   mMarks.drawSample(cr, *markClass, LEGEND_SAMPLE_WIDTH - 8.0);
                               }, false});
    if (mScene.map) {
        const bool isImage = mScene.image1 != nullptr;
        entries.push_back(lineEntry(isImage ? "edge of the first picture" : "box of the first points", strokeFirstOutline, true));
        entries.push_back(lineEntry(fmt::format("where TForm maps the {} in the second picture", isImage ? "edge" : "box"),
                                    strokeCarriedOutline, false));
    }
    if (mMarks.leftOutNum() > 0)
        entries.push_back({counted(mMarks.leftOutNum(), "pair") + " not finite or far outside, not drawn", {}, false});
    if (!mIsSideBySide && (mScene.image1 || mScene.image2))
        entries.push_back({fmt::format("background: the {} picture, {}", mScene.image1 ? "first" : "second",
                                       fileNameOf((mScene.image1 ? mScene.image1 : mScene.image2)->name)), {}, true});
    return entries;
}

void MatchPanel::drawBackground(PlotCanvas& canvas) const
{
    for (const auto& [image, frame] : {std::pair{mScene.image1.get(), &mFirst}, std::pair{mScene.image2.get(), &mSecond}}) {
        if (image == nullptr)
            continue;
        const FrameClip clip(canvas.context(), *frame);
        drawPicture(canvas, *frame, *image);
    }
}

void MatchPanel::drawOutlines(cairo_t* cr) const
{
    if (!mScene.map)
        return;
    {
        const FrameClip clip(cr, mFirst);
        traceOutline(cr, mFirst, outlineOf(mOutlined));
        strokeFirstOutline(cr);
    }
    const FrameClip clip(cr, mSecond);
    for (const Polyline& part : mCarried)
        traceOutline(cr, mSecond, part);
    strokeCarriedOutline(cr);
}

void MatchPanel::draw(PlotCanvas& canvas) const
{
    cairo_t* const cr = canvas.context();
    drawBackground(canvas);
    // Many marks would hide the outlines, and the outlines, which run through the outermost points, few marks.
    const bool isOutlineAbove = mScene.pairs.size() > FEW_MAX_NUM;
    if (!isOutlineAbove)
        drawOutlines(cr);
    mMarks.draw(cr);
    if (isOutlineAbove)
        drawOutlines(cr);
    drawAxes(canvas, mFirst);
    if (mIsSideBySide) {
        drawAxes(canvas, mSecond);
        drawHeading(canvas, mFirst, "first", *mScene.image1);
        drawHeading(canvas, mSecond, "second", *mScene.image2);
    }
    drawLegend(canvas, legend(), left(), mLegendTop, right() - left());
}

}  // namespace esttform::app
