#pragma once

#include "korguibase_export.h"

#include <korcg_dbg.h>

/// The host's side of the diagnostics: a table whose operations look variables up in the process
/// environment, keep lines of several threads apart with one recursive lock, and pass the lines of
/// failed assertions to the Qt message log, so that a host without a console sees them too.
/// The table lives as long as this library; hand it to dbg_SetCallBacks before dbg_Init, and take
/// it out before the library is unloaded.
KORGUIBASE_API const dbg_CallBacks_s* getCallBackFunctions();

/// The stream that the diagnostics write to, null before dbg_Init has set it.
/// Not owned by the caller.
KORGUIBASE_API FILE* getDiagnosticsStream();
