#pragma once

#include "TQX_RecordAccess.h"

#include "korcg_dbg.h"

#include <atomic>

// Helpers shared by the generated message classes.

/// Revision of the main block `links` parent links above a sub-block's record, -1 when a link is
/// missing: such a record carries no field that depends on the revision.
inline int TQX_mainRevision(const void* record, int links)
{
    for (; links > 0 && record; --links)
        record = static_cast<const Kor::MessageApi::KorcgHeader_s*>(record)->korcg_father;
    return record ? static_cast<const Kor::MessageApi::TQX_MainHeader_s*>(record)->Revision : -1;
}

/// Asks once whether tracing is on for a message class; `level` stays -1 while the trace facility
/// is not initialised.
inline void TQX_resolveTrace(std::atomic<int>& level, const char* className)
{
    if (level.load(std::memory_order_relaxed) == -1)
        level.store(dbg_CheckModule("MessageAPI_TQX", className), std::memory_order_relaxed);
}
