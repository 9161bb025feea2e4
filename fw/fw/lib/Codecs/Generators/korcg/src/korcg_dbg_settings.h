#pragma once

#include "korcg_dbg.h"

namespace korcg
{

/// Fills `settings` from the variables that `callBacks.lookup`, else the process environment,
/// knows. The texts of the filters are copied and kept for the life of the process. Returns a
/// dbg_Error_e; after a failure `settings` is filled in part.
int readSettings(const dbg_CallBacks_s& callBacks, const char* logFileVariable,
                 dbg_Settings_s* settings);

/// Whether `filter` lets a module or class of that name pass; null lets all pass.
bool passesFilter(const char* filter, const char* name);

} // namespace korcg
