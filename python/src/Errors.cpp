#include "Bindings.h"
#include "Interrupts.h"
#include "tqx/log/DataError.h"
#include "tqx/log/read/LineError.h"

#include <exception>
#include <string>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

/// Raises the package's exception, made by make_error() of tqx._errors.
void raise(const char* kind, const char* text)
{
    const nb::object error = nb::module_::import_("tqx._errors").attr("make_error")(kind, text);
    PyErr_SetObject(error.type().ptr(), error.ptr());
}

void translate(const std::exception_ptr& thrown, void*)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const Interrupted&) {
        PyErr_SetNone(PyExc_KeyboardInterrupt);
    } catch (const SourceError& error) {
        raise("source", error.what());
    } catch (const DataError& error) {
        raise("request", error.what());
    } catch (const LineError& error) {
        raise("line", error.what());
    }
}

} // namespace

void bindErrors(nb::module_&)
{
    nb::register_exception_translator(translate);
}

} // namespace tqx::python
