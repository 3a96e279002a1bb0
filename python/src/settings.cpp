#include "settings.h"

#include "matches/points.h"

#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace esttform::python {

namespace py = pybind11;

namespace {

std::string typeOf(const py::handle& value)
{
    return std::string(py::str(py::type::handle_of(value).attr("__name__")));
}

template <typename Value>
Value valueOf(const py::handle& value, const std::string& name, const char* expected)
{
    try {
        return value.cast<Value>();
    } catch (const py::cast_error&) {
        throw py::type_error(fmt::format("{}: got a value of type {}, expected {}", name, typeOf(value), expected));
    }
}

/// "NAME=VALUE" of raw dialog values, keyed by name or index.
std::vector<std::string> paramTexts(const py::handle& value)
{
    if (!py::isinstance<py::dict>(value))
        throw py::type_error(fmt::format("params: got a value of type {}, expected a dict of dialog values", typeOf(value)));
    const ParamInfo& layoutParam = paramTable().back();
    std::vector<std::string> texts;
    for (const auto& [key, number] : py::reinterpret_borrow<py::dict>(value)) {
        const auto name = py::str(key).cast<std::string>();
        if (name == layoutParam.name || name == std::to_string(layoutParam.index))
            throw py::value_error(fmt::format("params: got {}, which follows from the arrays", name));
        texts.push_back(fmt::format("{}={}", name, valueOf<double>(number, "params", "numbers")));
    }
    return texts;
}

std::string pathOf(const py::object& value)
{
    PyObject* bytes = nullptr;
    if (PyUnicode_FSConverter(value.ptr(), &bytes) == 0)
        throw py::error_already_set();
    return py::reinterpret_steal<py::bytes>(bytes);
}

/// Moves the value of a keyword out of those that are left.
py::object taken(py::dict& keywords, const char* name)
{
    if (!keywords.contains(name))
        return py::none();
    py::object value = keywords[name];
    keywords.attr("pop")(name);
    return value;
}

}  // namespace

std::uint32_t wholeNumber(const py::handle& value, const std::string& name)
{
    if (PyBool_Check(value.ptr()) || PyIndex_Check(value.ptr()) == 0)
        throw py::type_error(fmt::format("{}: got a value of type {}, expected a whole number", name, typeOf(value)));
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!index)
        throw py::error_already_set();
    int isOutside = 0;
    const long long number = PyLong_AsLongLongAndOverflow(index.ptr(), &isOutside);
    if (isOutside != 0 || number < 0 || number > std::numeric_limits<std::uint32_t>::max())
        throw py::value_error(fmt::format("{}: got {}, expected a whole number from 0 to {}", name,
                                          std::string(py::str(value)), std::numeric_limits<std::uint32_t>::max()));
    return static_cast<std::uint32_t>(number);
}

double realNumber(const py::handle& value, const std::string& name)
{
    return valueOf<double>(value, name, "a number");
}

bool truth(const py::handle& value, const std::string& name)
{
    return valueOf<bool>(value, name, "True or False");
}

std::string keywordSpelling(std::string_view name)
{
    if (name.substr(0, 3) == "no-")
        return keywordSpelling(name.substr(3)) + "=False";
    if (name == "param")
        return "params";
    if (name == "points-type")
        return "dtype";
    std::string keyword(name);
    std::replace(keyword.begin(), keyword.end(), '-', '_');
    return keyword;
}

app::BlockSetup settingsOf(const py::dict& keywords, DataType pointsType, Layout layout)
{
    py::dict left = py::reinterpret_steal<py::dict>(PyDict_Copy(keywords.ptr()));
    app::BlockOptions o;
    const auto word = [&](const char* name, auto& target) {
        if (const py::object value = taken(left, name); !value.is_none())
            target = valueOf<std::string>(value, name, "a word");
    };
    const auto real = [&](const char* name, std::optional<double>& target) {
        if (const py::object value = taken(left, name); !value.is_none())
            target = realNumber(value, name);
    };
    const auto whole = [&](const char* name, std::optional<std::uint32_t>& target) {
        if (const py::object value = taken(left, name); !value.is_none())
            target = wholeNumber(value, name);
    };
    const auto flag = [&](const char* name) -> std::optional<bool> {
        const py::object value = taken(left, name);
        return value.is_none() ? std::nullopt : std::optional<bool>(truth(value, name));
    };
    word("type", o.type);
    word("method", o.method);
    word("sampling", o.sampling);
    if (const py::object value = taken(left, "tform_type"); !value.is_none())
        o.tformType = py::isinstance<py::str>(value) ? value.cast<std::string>() : std::string(py::str(py::dtype::from_args(value)));
    if (const py::object value = taken(left, "block"); !value.is_none())
        o.blockPath = pathOf(value);
    real("threshold", o.threshold);
    real("threshold_px", o.thresholdPx);
    real("confidence", o.confidence);
    real("stop_at_inliers", o.stopAtInliers);
    whole("samples", o.sampleNum);
    whole("max_samples", o.maxSampleNum);
    whole("seed", o.seed);
    o.isNotRobust = flag("robust") == false;
    const std::optional<bool> isRefined = flag("refine");
    o.isRefine = isRefined == true;
    o.isNoRefine = isRefined == false;
    if (const py::object value = taken(left, "params"); !value.is_none())
        o.params = paramTexts(value);
    if (!left.empty())
        throw py::type_error(fmt::format("got the keyword '{}', which is no setting", std::string(py::str((*left.begin()).first))));

    // NumPy's word for a type is as good as the block's.
    if (o.tformType)
        for (const DataType type : {DataType::Double, DataType::Single})
            if (*o.tformType == dtypeName(type))
                o.tformType = app::typeName(type);
    o.pointsType = app::typeName(pointsType);
    o.layout = layout == Layout::Rows ? "rows" : "columns";
    return app::resolveBlockOptions(o, keywordSpelling);
}

}  // namespace esttform::python
