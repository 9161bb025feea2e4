#pragma once

#include "emit/Emitters.h"

#include <string>

namespace korcg::generator::reference
{

/// Page of one type: what it is, its size, what it belongs to, its fields.
std::string typePage(const Format& format, const RecordType& type);

/// The facts about a type that are above its fields.
std::string typeFacts(const Format& format, const RecordType& type);

/// Bytes of a block or entry, by revision where they differ: "96", "20 + N1 x SB1Length". HTML.
std::string sizeText(const Format& format, const RecordType& type);

/// Lists of all types in three orders, and the pages that all blocks share.
std::string indexByName(const Format& format, const Selection& selection);
std::string indexByNumber(const Format& format, const Selection& selection);
std::string indexByFamily(const Format& format, const Selection& selection);
std::string namedValues(const Format& format, const Selection& selection);
std::string framing();
std::string styleSheet();

/// The script of the search box, and the names of types, fields and named values that it looks
/// through, which it loads when somebody types.
std::string searchScript();
std::string searchData(const Format& format, const Selection& selection);

} // namespace korcg::generator::reference
