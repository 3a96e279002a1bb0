#include "errors.h"

#include "blockhost/estimator.h"
#include "failure.h"

namespace esttform::python {

namespace py = pybind11;

namespace {

void raise(const char* name, const char* text)
{
    const py::object type = py::module_::import("esttform._errors").attr(name);
    const auto message = py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(text));    // names of files are any bytes
    PyErr_SetObject(type.ptr(), message.ptr());
}

}  // namespace

void addErrors()
{
    py::register_local_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const StepRefused& e) {
            raise("StepError", e.what());
        } catch (const Closed& e) {
            raise("ClosedError", e.what());
        } catch (const app::Failure& e) {
            raise("SettingsError", e.what());
        } catch (const Error& e) {
            raise(e.kind() == ErrorKind::Usage  ? "SettingsError"
                  : e.kind() == ErrorKind::Load ? "LoadError"
                                                : "InternalError",
                  e.what());
        }
    });
}

}  // namespace esttform::python
