#pragma once

#include "Reference.h"
#include "TQX_codec.h"

#include <cstdint>
#include <vector>

/// The records above a sub-block, for decoding it alone: its owner and, where that is a sub-block
/// too, the main block. For a main block there are none.
class Ancestors
{
public:
    /// `nestedLength` becomes the length that the main block states for entries below `type`.
    Ancestors(const Kor::MessageApi::TQX_TypeLayout& type, unsigned revision,
              unsigned nestedLength);

    /// The direct parent, null for a main block.
    void* father() { return m_records.empty() ? nullptr : m_records.front().data(); }

    const reference::Surroundings& surroundings() const { return m_surroundings; }

private:
    std::vector<std::vector<uint64_t>> m_records;
    reference::Surroundings m_surroundings;
};

/// Calls the generated TQX_decode_<Name>() of any type, found by its name in the library.
int32_t decodeAlone(const Kor::MessageApi::TQX_TypeLayout& type,
                    Kor::MessageApi::TQX_Context_s* context, const uint8_t* buffer, uint16_t size,
                    uint32_t* offset, void* father, uint32_t explicitLength, void* record);
