#pragma once

#include <QString>

class TQXDecoder;

/// Decodes a whole log; the decoder publishes its messages. Damaged places are skipped.
/// Returns false, after a message on standard error, when the file cannot be read.
bool readLog(const QString& path, TQXDecoder& decoder);
