#pragma once

#include "model/Errors.h"
#include "model/Model.h"

#include <string>

namespace korcg::generator
{

// The parts of check(). Each looks at one kind of mistake in the whole format or in one type.

/// Names and numbers that must be unique, ranges of numbers, and the registration list.
void checkIdentities(const Format& format, Errors& errors);

/// Who holds whom: sub-blocks without owner, levels against record-type numbers, kinds.
void checkNesting(const Format& format, Errors& errors);

/// Fields of one name that mean different things without saying so.
void checkMeanings(const Format& format, Errors& errors);

/// Names of fields, sub-fields within their words.
void checkNames(const RecordType& type, Errors& errors);

/// Counts, lengths, selectors, order of revisions, offsets, sizes.
void checkLayout(const RecordType& type, Errors& errors);

/// Formulas: what triggers them and what they are computed from.
void checkDerived(const Format& format, const RecordType& type, Errors& errors);

/// Units, scales, named values and starting values.
void checkValues(const Format& format, const RecordType& type, Errors& errors);

/// "PVTGeodetic2.Mode", how messages name a field.
std::string qualified(const RecordType& type, const Field& field);

/// Row of the field with this identifier, or -1.
int findRow(const RecordType& type, const std::string& identifier);

/// The row after which the value of the field is known: that of its word, of the wire field that
/// triggers its formula, or its own.
int knownBehind(const RecordType& type, int row);

} // namespace korcg::generator
