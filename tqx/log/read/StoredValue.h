#pragma once

#include "TQX_RecordAccess.h"
#include "tqx/log/read/JsonValue.h"

#include <cstdint>
#include <string>

/// Converts JSON values to stored values of records. All functions throw LineError, without a
/// place, for a value of the wrong type or out of range.
namespace tqx
{

/// Stores a number, or a string of at most one character, as element `index` of a member.
void storeElement(const Kor::MessageApi::TQX_FieldLayout& field, void* record, uint32_t index,
                  const JsonValue& value);

/// Stores an integer as element `index` of an integer member; bits above its width are cut off.
void storeInteger(const Kor::MessageApi::TQX_FieldLayout& field, void* record, uint32_t index,
                  uint64_t value);

/// A value for a bit range, in the lowest bits.
uint64_t bitsOf(const Kor::MessageApi::TQX_FieldLayout& field, const JsonValue& value);

/// A string as Latin-1 characters, at most `capacity` of them.
std::string latin1Of(const JsonValue& value, size_t capacity);

/// The value, which must be an array; its content is not checked.
const JsonValue& arrayOf(const JsonValue& value);

/// The value, which must be an object; its content is not checked.
const JsonValue& objectOf(const JsonValue& value);

} // namespace tqx
