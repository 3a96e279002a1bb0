#include "match_file.h"

#include "failure.h"
#include "matches/match_reader.h"
#include "point_array.h"

#include <fmt/format.h>

namespace esttform::python {

namespace py = pybind11;

py::tuple readMatches(const std::string& path, const py::object& dtype, const std::vector<std::string>& columns)
{
    app::ReaderOptions options;
    options.pointsType = typeOfDtype(py::dtype::from_args(dtype), "dtype");
    options.columns = columns;
    options.columnsName = "columns";
    app::MatchFrame frame;
    {
        const py::gil_scoped_release release;
        app::MatchReader reader(path, options);
        reader.next(frame);
        if (app::MatchFrame other; reader.next(other))
            throw app::Failure(fmt::format("{}: more than one step (column frame), expected one", path));
    }
    const auto pointNum = static_cast<py::ssize_t>(frame.pairs.size());
    const auto pointsOf = [&](int setIdx) {
        py::array points(py::dtype(dtypeName(options.pointsType)), std::vector<py::ssize_t>{pointNum, 2});
        app::packPoints(frame.pairs, setIdx, options.pointsType, Layout::Columns, points.mutable_data());
        return points;
    };
    return py::make_tuple(pointsOf(0), pointsOf(1));
}

}  // namespace esttform::python
