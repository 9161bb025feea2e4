#pragma once

#include "model/Errors.h"
#include "model/Model.h"

namespace korcg::generator
{

/// Finds out who holds whom: owners, level, linksToMain, registration and highestRevision. A type
/// that holds itself, or that stands at different depths, is an error.
void link(Format& format, Errors& errors);

/// Wire offset of every field.
///
/// Offsets are constant as long as everything in front has a fixed place: fields of a revision
/// count as present, one revision after the other; alternatives of one selector start at the same
/// place; padding of revision k stands behind the last field of a revision up to k. Nothing is
/// constant behind counted fields, sub-blocks or selected content.
void placeFields(Format& format);

/// Bytes of one element's value on the wire, times the number of elements (the capacity of counted
/// fields); 0 for fields that are not on the wire, and for sub-blocks.
int wireSize(const Field& field);

/// Hands out the codes and their names.
///
/// The runs follow each other by record-type number, reserved types included, with the general
/// overflow code behind the run of type 15; then come the DISABLED codes of all main blocks in the
/// same order. A format that describes or reserves every record type must end up exactly at the
/// fixed codes (-151, -5829); anything else is an error. A smaller one, as tests use it, is
/// numbered without gaps, and the names between its last DISABLED code and -6072 are "???". The
/// codes of INVALID_MESSAGE (-6072) and EOF (-6073) are fixed in both.
void number(Format& format, Errors& errors);

} // namespace korcg::generator
