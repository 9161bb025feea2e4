#pragma once

#include "StreamBuilder.h"
#include "TQX_Format.h"

#include <cstdint>
#include <random>

constexpr uint32_t secondsPerWeek = Kor::MessageApi::TQX_secondsPerWeek;
constexpr uint32_t unsetTow = 0xffffffff;

/// A block with a time: block number and revision in `id`, TOW in milliseconds, `extra` bytes
/// after its header.
Bytes timedBlock(uint16_t id, uint32_t tow, uint16_t week, size_t extra = 2);

/// A hostile stream of blocks of several numbers, known and unknown, whose times jump, and of all
/// that randomStream makes.
Bytes hostileLog(std::mt19937& random);
