#pragma once

#include "tqx_export.h"

// Failures of field access. They are out of line so that the getters stay short.

/// Ends the process through qFatal: a field of a message without a record was read. `className` is
/// the message's class, "TQX_AGCState_Message".
[[noreturn]] TQX_API void TQX_failUninitialized(const char* className);

/// Throws a MessageApiEvent of type FieldAccess: the block of this revision, or with this selecting
/// value, does not carry the field. `block` is "Battery", `field` the name that the getter has.
[[noreturn]] TQX_API void TQX_throwAbsent(const char* block, const char* field);

/// Throws a MessageApiEvent of type FieldAccess: an index at or beyond the element count.
[[noreturn]] TQX_API void TQX_throwOutOfRange(const char* block, const char* field);
