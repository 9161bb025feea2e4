#pragma once

#include <QStringList>

class Message;

/// What a viewer shows of any message, by its metadata alone: its type, a line for each field that
/// is present and not there for the encoding only, sub-messages indented below their field.
QStringList viewMessage(const Message& message, int depth = 0);
