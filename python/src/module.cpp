// esttform._core: the block for Python. The package's own modules wrap it; its names are not for users.
#include "blockhost/codegen.h"
#include "batch/batch_seed.h"
#include "errors.h"
#include "match_file.h"
#include "running_block.h"
#include "settings.h"

#include <fmt/format.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <limits>

namespace py = pybind11;

namespace esttform::python {

namespace {

/// Sources by name, as 'esttform codegen' writes them.
py::dict generate(const py::object& maxPoints, const py::object& dtype, const std::string& layout, const std::string& order,
                  const std::string& name, const py::object& isVariableSize, const py::object& withMain, const py::dict& keywords)
{
    const Layout blockLayout = layoutOf(conventionOf(layout), order);
    const app::BlockSetup setup = settingsOf(keywords, typeOfDtype(py::dtype::from_args(dtype), "dtype"), blockLayout);
    CodeOptions options;
    options.name = name;
    options.isVariableSize = truth(isVariableSize, "variable_size");
    options.withMain = truth(withMain, "main");
    options.blockPath = setup.options.blockPath;
    const std::uint32_t maxPtsNum = wholeNumber(maxPoints, "max_points");
    if (maxPtsNum > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()))
        throw py::value_error(fmt::format("max_points: got {}, more than the block can count", maxPtsNum));
    py::dict files;
    for (const GeneratedFile& file : generateCode(setup.params, setup.pointsType, static_cast<std::int32_t>(maxPtsNum), options))
        files[py::str(file.name)] = file.text;
    return files;
}

}  // namespace

}  // namespace esttform::python

PYBIND11_MODULE(_core, module)
{
    using namespace esttform::python;
    module.attr("__version__") = ESTTFORM_VERSION;
    addErrors();
    module.def("estimate", &estimateOnce, py::arg("pts1"), py::arg("pts2"), py::arg("layout"), py::arg("order"), py::arg("settings"));
    module.def("generate_code", &generate, py::arg("max_points"), py::arg("dtype"), py::arg("layout"), py::arg("order"),
               py::arg("name"), py::arg("variable_size"), py::arg("with_main"), py::arg("settings"));
    module.def("read_matches", &readMatches, py::arg("path"), py::arg("dtype"), py::arg("columns"));
    module.def("batch_seed", [](const py::object& seed, const py::object& index) {
        return esttform::app::batchSeed(wholeNumber(seed, "seed"), wholeNumber(index, "index"));
    }, py::arg("seed"), py::arg("index"));
    py::class_<RunningBlock>(module, "RunningBlock")
        .def(py::init<const py::dict&, const py::object&, const py::object&, const py::object&, const py::object&>(), py::arg("settings"),
             py::arg("layout"), py::arg("order"), py::arg("dtype"), py::arg("max_points"))
        .def("step", &RunningBlock::step, py::arg("pts1"), py::arg("pts2"), py::arg("seed"))
        .def("set_param", &RunningBlock::setParam, py::arg("key"), py::arg("value"))
        .def("close", &RunningBlock::close)
        .def_property_readonly("pts1", &RunningBlock::pts1)
        .def_property_readonly("pts2", &RunningBlock::pts2)
        .def_property_readonly("room", &RunningBlock::room)
        .def_property_readonly("params", &RunningBlock::params)
        .def_property_readonly("is_open", &RunningBlock::isOpen);
}
