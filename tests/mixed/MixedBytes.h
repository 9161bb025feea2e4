#pragma once

#include "StreamBuilder.h"

#include <random>
#include <string>

/// CRC-24Q, bit by bit.
uint32_t slowCrc24(const Bytes& bytes);

/// A sentence around what is between its delimiter and its checksum; `wrong` bits of that are
/// flipped.
Bytes sentence(const std::string& content, char delimiter = '$', unsigned wrong = 0);

/// A frame around a message of up to 1,023 bytes.
Bytes frame(const Bytes& message);

/// Neighbours whole, cut and damaged, what resembles them, and noise.
Bytes randomRun(std::mt19937& random);
