#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

bool isSubMessage(const Field& field);

/// "TQX_AGCState_Gain_FieldInfo"
std::string fieldInfoClass(const RecordType& type, const Field& field);

/// "TQX_AGCState_MessageInfo"
std::string messageInfoClass(std::string_view typeName);

/// "u8", "i16[3]", "ch[20]", "u3, bits 5 to 7 of FrontEndID", "AGCState[N]": the type as a reader
/// knows it.
std::string typeText(const RecordType& type, const Field& field);

/// One line on what the field is: meaning, type, unit, scale, do-not-use, presence.
std::string describe(const RecordType& type, const Field& field);

} // namespace korcg::generator
