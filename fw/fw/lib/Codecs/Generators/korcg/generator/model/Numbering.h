#pragma once

#include "model/Errors.h"
#include "model/Ledger.h"
#include "model/Model.h"

namespace korcg::generator
{

/// Links owners and sub-blocks: owners, levels, linksToMain, registration and revisions. A type
/// that holds itself, or that is held at different depths, is an error.
void link(Format& format, Errors& errors);

/// Wire offset of every field.
///
/// Offsets are constant as long as everything before has a fixed place: fields of a revision
/// count as present, one revision after the other; alternatives of one selector start at the same
/// place; padding of revision k follows the last field of a revision up to k. Nothing is
/// constant after counted fields, sub-blocks or selected content.
void placeFields(Format& format);

/// Bytes of one element's value on the wire, times the number of elements (the capacity of counted
/// fields); 0 for fields that are not on the wire, and for sub-blocks.
int wireSize(const Field& field);

/// Assigns codes and their names.
///
/// First edition: the runs follow each other by record-type number, with the general overflow code
/// after the type that the description names; then come the DISABLED codes of all main blocks in
/// the same order, then INVALID_MESSAGE and EOF. Places that the description fixes are checked.
///
/// Later editions: a run for each new type, its DISABLED code at the end, and codes of single
/// fields for types that exist already; all numbers come from the ledger.
void number(Format& format, Ledger& ledger, Errors& errors);

/// Assigns record types from `firstRecord` up to the types of an addition, by its own ledger, and
/// sorts them by these. One that grows gives numbers in the order of the types.
void numberAddedTypes(Format& format, int firstRecord, Ledger& ledger, Errors& errors);

/// Once they are linked, assigns codes from `firstCode` down, by the same ledger. They have the
/// same names as those of later editions.
void numberAddedCodes(Format& format, int firstCode, Ledger& ledger, Errors& errors);

} // namespace korcg::generator
