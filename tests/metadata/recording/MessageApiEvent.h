#pragma once

#include <QString>

class FormatInfo;

struct MessageApiEvent {
    enum Type { FieldAccess = 6 };
    MessageApiEvent(Type, QString, const FormatInfo*) {}
};
