#pragma once

#include <QString>

/// A Latin-1 literal of the description as a string on the heap, which outlives the library. Most
/// literals are asked for many times in a row of fields; recent ones are kept and shared.
QString TQX_sharedText(const char* literal);
