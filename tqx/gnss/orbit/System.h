#pragma once

#include <cstdint>

namespace tqx
{

/// A satellite navigation system.
enum class System : uint8_t { Gps, Glonass, Galileo, BeiDou, Qzss, NavIc, Sbas };

/// Place of a system in tables with one entry each.
constexpr unsigned indexOf(System system)
{
    return static_cast<unsigned>(system);
}

} // namespace tqx
