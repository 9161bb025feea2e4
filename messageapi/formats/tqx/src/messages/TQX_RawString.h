#pragma once

#include <QString>
#include <QVector>

#include <cstdint>

/// One line of text of the fields of a record whose place in the field list is set in `fieldMask`,
/// with Message::fieldSeparator between them: stored numbers without scale or unit, text up to its
/// first zero, elements of arrays joined by blanks, "submsg" for each sub-block, nothing for a
/// field that the block does not carry. A do-not-use value gives Message::doNotUseString when
/// Message::useDoNotUseString is set. `record` is read for fields that are selected only.
QString TQX_rawString(uint32_t recordType, const void* record, const QVector<bool>& fieldMask);
