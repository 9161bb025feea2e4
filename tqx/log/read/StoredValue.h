#pragma once

#include "TQX_RecordAccess.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

/// JSON values made into stored values of records. All throw LineError for a value of the wrong
/// type or out of range, without a place.
namespace tqx
{

/// Stores a number, or a string of at most one character, as element `index` of a member.
void storeElement(const Kor::MessageApi::TQX_FieldLayout& field, void* record, uint32_t index,
                  const nlohmann::json& value);

/// Stores an integer as element `index` of an integer member; bits above its width are cut off.
void storeInteger(const Kor::MessageApi::TQX_FieldLayout& field, void* record, uint32_t index,
                  uint64_t value);

/// A value for a bit range, as it stands in the lowest bits of the packed word.
uint64_t bitsOf(const Kor::MessageApi::TQX_FieldLayout& field, const nlohmann::json& value);

/// A string as Latin-1 characters, at most `capacity` of them.
std::string latin1Of(const nlohmann::json& value, size_t capacity);

/// The value is an array; nothing more is asked of it.
const nlohmann::json::array_t& arrayOf(const nlohmann::json& value);

/// The value is an object; nothing more is asked of it.
const nlohmann::json::object_t& objectOf(const nlohmann::json& value);

} // namespace tqx
