#pragma once

#include "model/Model.h"

#include <string>
#include <string_view>
#include <vector>

namespace korcg::generator
{

/// What a field is for: as the description says, or as other fields make use of it. Empty when
/// nothing is known of it.
std::string meaningText(const Format& format, const RecordType& type, const Field& field);

/// What values of the field look like: unit, range, named values, and which one means "not
/// available". Never empty for a field of numbers that is neither reserved nor padding.
std::string valueText(const Format& format, const RecordType& type, const Field& field);

/// The parts that are not empty, with "; " between them.
std::string joined(const std::vector<std::string>& parts);

/// Without blanks and full stops at the end.
std::string withoutStop(std::string text);

/// A blank at which no line may be broken.
constexpr char firmBlank = '\x1f';

} // namespace korcg::generator
