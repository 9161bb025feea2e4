#include "Bindings.h"
#include "Interrupts.h"

NB_MODULE(_tqx, module)
{
    module.doc() = "Bindings of the C++ libraries; the package tqx is built on them.";
    // Logs may live until the interpreter ends.
    nanobind::set_leak_warnings(false);
    tqx::python::rememberMainThread();
    tqx::python::bindErrors(module);
    tqx::python::bindTypes(module);
    tqx::python::bindLogs(module);
    tqx::python::bindTables(module);
    tqx::python::bindProducts(module);
    tqx::python::bindMessages(module);
    tqx::python::bindRinex(module);
    tqx::python::bindReport(module);
    tqx::python::bindTrack(module);
    tqx::python::bindSimulation(module);
}
