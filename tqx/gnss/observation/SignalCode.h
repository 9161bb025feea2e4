#pragma once

#include "tqx/gnss/observation/SatelliteId.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <optional>

namespace tqx
{

/// Band and attribute of a signal as the observation codes of RINEX 3 and 4 have them: "1C".
struct SignalCode {
    char band = ' ';
    char attribute = ' ';

    friend bool operator==(const SignalCode& a, const SignalCode& b)
    {
        return a.band == b.band && a.attribute == b.attribute;
    }
    friend bool operator<(const SignalCode& a, const SignalCode& b)
    {
        return a.band != b.band ? a.band < b.band : a.attribute < b.attribute;
    }
};

/// Place of a code in tables with 260 entries.
constexpr unsigned placeOf(const SignalCode& code)
{
    return static_cast<unsigned>(code.band - '0') * 26U +
           static_cast<unsigned>(code.attribute - 'A');
}

/// The code of a block's signal number for a satellite of `system`. Where blocks do not say which
/// component of a signal is tracked, the pilot is assumed. `isE6B`: Galileo E6 is tracked on its
/// data component. Nothing for beams of the L band, for numbers without a signal and for signals
/// without a RINEX code.
TQX_GNSS_API std::optional<SignalCode> signalCode(char system, uint8_t signal, bool isE6B = false);

/// Carrier frequency in hertz; of GLONASS FDMA signals on `channel`, -7 to 6. 0 when it is unknown.
TQX_GNSS_API double carrierFrequency(uint8_t signal, int channel);

/// Whether the carrier of a signal depends on the channel of the satellite.
constexpr bool isFdma(uint8_t signal)
{
    return signal >= 8 && signal <= 11;
}

} // namespace tqx
