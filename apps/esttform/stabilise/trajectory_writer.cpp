#include "stabilise/trajectory_writer.h"

#include "number_text.h"

#include <fmt/format.h>

#include <cmath>

namespace esttform::app {

double degreesOf(const Motion& motion) noexcept
{
    return motion.logA.imag() * 45.0 / std::atan(1.0);
}

double scaleOf(const Motion& motion) noexcept
{
    return std::exp(motion.logA.real());
}

std::string trajectoryCsv(const StabilisedPath& s)
{
    std::string text = "frame,found,x,y,angle,scale,xSmooth,ySmooth,angleSmooth,scaleSmooth,c00,c01,c02,c10,c11,c12\n";
    for (std::size_t k = 0; k < s.path.size(); ++k) {
        text += fmt::format("{},", s.firstFrame + static_cast<std::int64_t>(k));
        if (k < s.isFound.size())
            text += s.isFound[k] ? '1' : '0';
        for (const Motion& motion : {s.path[k], s.smooth[k]})
            for (const double value : {motion.t.real(), motion.t.imag(), degreesOf(motion), scaleOf(motion)})
                text += "," + exactText(value);
        const PointMap correction = correctionOf(s.path[k], s.smooth[k], s.centre);
        for (std::size_t i = 0; i < 6; ++i)
            text += "," + exactText(correction.m[i]);
        text += "\n";
    }
    return text;
}

}  // namespace esttform::app
