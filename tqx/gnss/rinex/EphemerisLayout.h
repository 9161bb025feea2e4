#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"

#include <vector>

namespace tqx::rinex
{

/// A number in a record of an ephemeris.
struct LayoutField {
    double Ephemeris::*member = nullptr; ///< null for a spare field
    double scale = 1;                    ///< of a spare field 0 for zero, else it stays blank
};

/// The numbers of a record in order: three in the line of the reference time, then four per line.
const std::vector<LayoutField>& layoutOf(char system, NavigationMessage message);

} // namespace tqx::rinex
