#pragma once

#include "model/Model.h"

#include <string>
#include <string_view>

namespace korcg::generator
{

/// Identifier form of a display name: blanks become underscores ("FrontEnd_Code").
std::string identifier(std::string_view displayName);

/// "PVTGEODETIC2", "FRONTEND_CODE": the form that code names use, one leading underscore dropped.
std::string upperName(std::string_view displayName);

/// Record structure without namespace: "TQX_PVTGeodetic2_s".
std::string recordName(const RecordType& type);
std::string recordName(std::string_view typeName);

/// Member type in the record: "uint8_t", "double", "char".
std::string_view memberType(Scalar type);

/// Return type of getters: "unsigned char", "signed char", "unsigned short", "float", ...
std::string_view getterType(Scalar type);

int bytesOf(Scalar type);
bool isSigned(Scalar type);
bool isFloat(Scalar type);

/// Text as a C++ string literal, quotes included.
std::string literal(std::string_view text);

/// Name of the description file without its directory, for head comments.
std::string sourceOf(const RecordType& type);

} // namespace korcg::generator
