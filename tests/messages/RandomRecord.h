#pragma once

#include "TQX_Layout.h"

#include <random>

/// Fills a record that init has prepared with random values and up to three elements per sub-block
/// array. Counts fit their arrays, and each selected field has its chance to be there.
void fillRandomly(const Kor::MessageApi::TQX_TypeLayout& type, void* record,
                  std::mt19937& generator);
