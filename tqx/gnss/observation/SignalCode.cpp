#include "tqx/gnss/observation/SignalCode.h"

#include <array>

namespace tqx
{

namespace
{

/// System, code and carrier of a signal number.
struct Row {
    char system = 0;
    SignalCode code;
    double frequency = 0; ///< hertz; of FDMA signals that of channel 0
};

constexpr size_t signalNumbers = 40;

constexpr double l1 = 1575420000;
constexpr double l2 = 1227600000;
constexpr double l5 = 1176450000;
constexpr double l6 = 1278750000;
constexpr double e5b = 1207140000;

constexpr std::array<Row, signalNumbers> rows = {{
    {'G', {'1', 'C'}, l1}, // 0 GPS L1 C/A
    {'G', {'1', 'W'}, l1}, // P(Y), tracked by semi-codeless techniques
    {'G', {'2', 'W'}, l2},
    {'G', {'2', 'L'}, l2},
    {'G', {'5', 'Q'}, l5},
    {'G', {'1', 'L'}, l1}, // 5
    {'J', {'1', 'C'}, l1},
    {'J', {'2', 'L'}, l2},
    {'R', {'1', 'C'}, 1602000000},
    {'R', {'1', 'P'}, 1602000000},
    {'R', {'2', 'P'}, 1246000000}, // 10
    {'R', {'2', 'C'}, 1246000000},
    {'R', {'3', 'Q'}, 1202025000},
    {'C', {'1', 'P'}, l1},
    {'C', {'5', 'P'}, l5},
    {'I', {'5', 'A'}, l5}, // 15
    {},                    // GLONASS L5 has no code
    {'E', {'1', 'C'}, l1},
    {'E', {'6', 'A'}, l6},
    {'E', {'6', 'C'}, l6},
    {'E', {'5', 'Q'}, l5}, // 20
    {'E', {'7', 'Q'}, e5b},
    {'E', {'8', 'Q'}, 1191795000},
    {}, // L band
    {'S', {'1', 'C'}, l1},
    {'S', {'5', 'I'}, l5}, // 25
    {'J', {'5', 'Q'}, l5},
    {'J', {'6', 'S'}, l6},
    {'C', {'2', 'I'}, 1561098000},
    {'C', {'7', 'I'}, e5b},
    {'C', {'6', 'I'}, 1268520000}, // 30
    {},                            // says that the number continues elsewhere
    {'J', {'1', 'L'}, l1},
    {'J', {'1', 'Z'}, l1},
    {'C', {'7', 'D'}, e5b},
    {}, // 35
    {'I', {'9', 'A'}, 2492028000},
    {'I', {'1', 'P'}, l1},
    {'J', {'1', 'E'}, l1},
    {'J', {'5', 'P'}, l5},
}};

constexpr uint8_t galileoE6 = 19;

} // namespace

std::optional<SignalCode> signalCode(char system, uint8_t signal, bool isE6B)
{
    if (signal >= signalNumbers || rows[signal].system != system)
        return std::nullopt;
    if (signal == galileoE6 && isE6B)
        return SignalCode{'6', 'B'};
    return rows[signal].code;
}

double carrierFrequency(uint8_t signal, int channel)
{
    if (signal >= signalNumbers)
        return 0;
    const double spacing = !isFdma(signal) ? 0 : signal < 10 ? 562500 : 437500;
    return rows[signal].frequency + spacing * channel;
}

} // namespace tqx
