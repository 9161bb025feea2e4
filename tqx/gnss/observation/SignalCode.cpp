#include "tqx/gnss/observation/SignalCode.h"

#include "DerivedValues.h"

#include <array>

namespace tqx
{

namespace
{

/// System and code of a signal number.
struct Row {
    char system = 0;
    SignalCode code;
};

constexpr size_t signalNumbers = 40;

constexpr std::array<Row, signalNumbers> rows = {{
    {'G', {'1', 'C'}}, // 0 GPS L1 C/A
    {'G', {'1', 'W'}}, // P(Y), tracked by semi-codeless techniques
    {'G', {'2', 'W'}},
    {'G', {'2', 'L'}},
    {'G', {'5', 'Q'}},
    {'G', {'1', 'L'}}, // 5
    {'J', {'1', 'C'}},
    {'J', {'2', 'L'}},
    {'R', {'1', 'C'}},
    {'R', {'1', 'P'}},
    {'R', {'2', 'P'}}, // 10
    {'R', {'2', 'C'}},
    {'R', {'3', 'Q'}},
    {'C', {'1', 'P'}},
    {'C', {'5', 'P'}},
    {'I', {'5', 'A'}}, // 15
    {},                // GLONASS L5 has no code
    {'E', {'1', 'C'}},
    {'E', {'6', 'A'}},
    {'E', {'6', 'C'}},
    {'E', {'5', 'Q'}}, // 20
    {'E', {'7', 'Q'}},
    {'E', {'8', 'Q'}},
    {}, // L band
    {'S', {'1', 'C'}},
    {'S', {'5', 'I'}}, // 25
    {'J', {'5', 'Q'}},
    {'J', {'6', 'S'}},
    {'C', {'2', 'I'}},
    {'C', {'7', 'I'}},
    {'C', {'6', 'I'}}, // 30
    {},                // the number continues elsewhere
    {'J', {'1', 'L'}},
    {'J', {'1', 'Z'}},
    {'C', {'7', 'D'}},
    {}, // 35
    {'I', {'9', 'A'}},
    {'I', {'1', 'P'}},
    {'J', {'1', 'E'}},
    {'J', {'5', 'P'}},
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
    const double frequency =
        Kor::MessageApi::Derived::carrierFrequency(signal, static_cast<uint8_t>(channel + 8));
    return frequency > 0 ? frequency : 0;
}

} // namespace tqx
