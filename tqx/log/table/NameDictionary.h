#pragma once

#include "TQX_FieldFacts.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// The texts of all codes of an integer field of up to 8 bits: their names, or their digits where
/// they have none. The place of a text is its code. Never changes, so that all batches of a column
/// share it.
class NameDictionary
{
public:
    static constexpr unsigned widest = 8; ///< bits of a field

    /// For a field of `width` bits.
    NameDictionary(const Kor::MessageApi::TQX_FieldFacts& facts, unsigned width);

    /// From given texts, which must be distinct; codes are their places.
    explicit NameDictionary(const std::vector<std::string>& texts);

    size_t size() const { return m_offsets.size() - 1; }

    /// Bytes of an index; they are signed, as some readers want them.
    uint32_t getIndexSize() const { return size() > size_t{INT8_MAX} + 1 ? 2 : 1; }

    /// Empty, or the place of the text of each code: codes that share a name have the first one's
    /// place, since no text is in a dictionary twice.
    const std::vector<uint8_t>& getPlaces() const { return m_places; }

    /// UTF-8, one text after the other, and where they begin; the last offset is the end.
    const std::string& getTexts() const { return m_texts; }
    const std::vector<int32_t>& getOffsets() const { return m_offsets; }

private:
    std::vector<uint8_t> m_places;
    std::string m_texts;
    std::vector<int32_t> m_offsets;
};

} // namespace tqx
