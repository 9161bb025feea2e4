#pragma once

#include "RinexText.h"

#include <map>
#include <string>

/// Multipath and slips from a RINEX file, by the definitions in the guide and by code of the tests
/// alone, in two passes over whole arcs.
struct RinexArcs {
    struct Multipath {
        double squares = 0;
        unsigned epochs = 0;
        double get() const;
    };

    std::map<std::string, Multipath> multipath; ///< by system and code: "G1C"
    std::map<std::string, unsigned> slips;      ///< by satellite

    /// `interval` in seconds.
    RinexArcs(const rinex::ObservationFile& file, double interval);
};
