#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Two blocks that show most about the speed of the codec: one with many different fields and one
/// with many entries. All numbers in them are random; framing, counts and lengths are correct.

/// PVTGeodetic2 of the highest revision, 96 bytes.
std::vector<uint8_t> positionBlock();

/// MeasEpoch2 of 40 signals with two further signals each, 1,780 bytes.
std::vector<uint8_t> epochBlock();

/// The same content as a serialised protobuf message (yardstick.proto).
std::string positionAsProtobuf();
std::string epochAsProtobuf();
