#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// The checksum of a block, bit by bit.
uint16_t slowChecksum(const uint8_t* bytes, size_t size);

/// "$@", a checksum of 0, block number 4007, `length`: a header without a block.
Bytes falseHeader(uint16_t length);

/// An intact block around `body`.
Bytes block(const Bytes& body);

/// An intact block of `size` bytes (at least 8) whose body counts up from 1.
Bytes blockOfSize(size_t size);

/// A copy of `bytes` with the lowest bit of the byte at `index` flipped.
Bytes flipped(Bytes bytes, size_t index);

/// The first `size` bytes.
Bytes cut(const Bytes& bytes, size_t size);

Bytes operator+(Bytes left, const Bytes& right);

Bytes text(const std::string& characters);

/// Intact blocks, junk, false headers, flipped bits, cut blocks and blocks within blocks.
Bytes randomStream(std::mt19937& random);
