#pragma once

#include <nanobind/nanobind.h>

/// Each adds the content of its file to the module.
namespace tqx::python
{

void bindErrors(nanobind::module_& module);
void bindLogs(nanobind::module_& module);
void bindTables(nanobind::module_& module);
void bindProducts(nanobind::module_& module);
void bindMessages(nanobind::module_& module);
void bindTypes(nanobind::module_& module);
void bindRinex(nanobind::module_& module);
void bindReport(nanobind::module_& module);
void bindTrack(nanobind::module_& module);
void bindSimulation(nanobind::module_& module);

} // namespace tqx::python
