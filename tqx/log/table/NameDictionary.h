#pragma once

#include "TQX_FieldFacts.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// The texts of all codes that an integer field of up to 8 bits can have: their names, and the
/// digits of those that have none. It never changes, so that all batches of a column share it.
class NameDictionary
{
public:
    static constexpr unsigned widest = 8; ///< bits of a field
    static constexpr int16_t none = -1;

    /// For a field of `width` bits. `hidesDoNotUse`: the code that means "not available" has no
    /// text.
    NameDictionary(const Kor::MessageApi::TQX_FieldFacts& facts, unsigned width,
                   bool hidesDoNotUse);

    /// The place of a code's text, or `none`.
    const std::array<int16_t, 1U << widest>& getIndices() const { return indices; }

    /// Whether indices need two bytes.
    bool isWide() const { return size() > INT8_MAX; }

    size_t size() const { return offsets.size() - 1; }

    /// UTF-8, one text after the other, and where they begin; the last offset is the end.
    const std::string& getTexts() const { return texts; }
    const std::vector<int32_t>& getOffsets() const { return offsets; }

private:
    std::array<int16_t, 1U << widest> indices;
    std::string texts;
    std::vector<int32_t> offsets;
};

} // namespace tqx
