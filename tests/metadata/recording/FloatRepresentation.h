#pragma once

#include <QString>

struct FloatRepresentation {
    static QString getString(double, char, int, bool) { return {}; }
};
