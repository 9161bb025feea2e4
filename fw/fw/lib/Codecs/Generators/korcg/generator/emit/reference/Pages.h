#pragma once

#include "emit/Emitters.h"

#include <string>

namespace korcg::generator::reference
{

/// Page of one type: what it is, its fields, what owns it.
std::string typePage(const Format& format, const RecordType& type);

/// Lists of all types in three orders, and the pages that all blocks share.
std::string indexByName(const Selection& selection);
std::string indexByNumber(const Selection& selection);
std::string indexByFamily(const Selection& selection);
std::string namedValues(const Format& format);
std::string framing();
std::string styleSheet();

} // namespace korcg::generator::reference
