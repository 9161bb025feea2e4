#pragma once

#include "emit/Emitters.h"

#include <string>

/// The pieces of the codec's generated text, one function per kind of output.
namespace korcg::generator::codec
{

/// Definition of the record structure.
std::string recordStruct(const RecordType& type);

/// Inline functions init_<Name>, derive_<Name>_<Field> and load_<Name> of one type.
std::string initFunction(const RecordType& type);
/// clear_<Name> of a sub-block type with counted arrays: init_<Name> but for the elements of these,
/// none of which can be reached while the counts are 0. Empty for other types.
std::string clearFunction(const RecordType& type);
/// start_<Name>: sets the bookkeeping members and what load_<Name> leaves alone, so that both
/// together do what init and the exact decoder do, but for elements that cannot be reached.
std::string startFunction(const Format& format, const RecordType& type);
std::string deriveFunctions(const Format& format, const RecordType& type);
std::string loadFunction(const Format& format, const RecordType& type);
/// Whether load_<Name> takes the record of the parent, from which some values derive.
bool needsParent(const RecordType& type);

/// TQX_init_<Name>, TQX_decode_<Name>, TQX_encode_<Name> and TQX_append_<Name>_<Sub>.
std::string exportedFunctions(const Format& format, const RecordType& type);
std::string exportedDeclarations(const RecordType& type);

/// Body of TQX_decode_<Name>.
std::string decodeBody(const Format& format, const RecordType& type);

/// Rows and type entry of the layout table.
std::string layoutTable(const Format& format, const RecordType& type);

/// Numbers of the edition: counts of record types and codes.
std::string editionHeader(const Format& format);

/// The driver with its switch over the block numbers, TQX_init_context, the table of all layouts.
std::string driver(const Format& format, const Selection& selection);

/// TQX_errorName with the table of all names.
std::string errorNames(const Format& format);

} // namespace korcg::generator::codec
