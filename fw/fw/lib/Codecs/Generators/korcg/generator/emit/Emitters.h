#pragma once

#include "emit/Output.h"
#include "model/Model.h"

#include <vector>

namespace korcg::generator
{

/// The types that are generated in this run, ascending record-type number. Numbers and codes are
/// always those of the whole format.
using Selection = std::vector<const RecordType*>;

/// Records, decoders, encoders, init, append, release, code names and the layout table.
void emitCodec(const Format& format, const Selection& selection, Output& output);

/// The table of facts about fields: units, scales, named values.
void emitFacts(const Format& format, const Selection& selection, Output& output);

/// Message classes and the record-to-message factory.
void emitMessages(const Format& format, const Selection& selection, Output& output);

/// Message and field metadata singletons and the registration order.
void emitMetadata(const Selection& selection, Output& output);

/// The reference of the format for people: HTML pages, one for each type, and indexes.
void emitReference(const Format& format, const Selection& selection, Output& output);

/// Names, numbers, types and places of all types and fields, one per line: what may not change.
void emitNames(const Selection& selection, Output& output);

} // namespace korcg::generator
