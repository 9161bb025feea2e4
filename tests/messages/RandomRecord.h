#pragma once

#include "TQX_Layout.h"

#include <random>

/// How much a random record holds.
enum class Fill {
    Few, ///< up to 60 numbers and 3 sub-blocks a field
    Full ///< as many as fit; sub-blocks of sub-blocks stay few
};

/// Fills a record that init has prepared with random values, many of them extreme ones. Each
/// selected field has its chance to be there. Where fields share a count it fits one of them.
void fillRandomly(const Kor::MessageApi::TQX_TypeLayout& type, void* record,
                  std::mt19937& generator, Fill fill = Fill::Few);

/// Makes the record hold a selected field, by its row.
void select(const Kor::MessageApi::TQX_TypeLayout& type, int field, void* record);
