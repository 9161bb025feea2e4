#pragma once

#include "TQX_OwnedRecord.h"
#include "TQX_codec.h"

#include <cstdint>
#include <vector>

/// A block with the starting values of its type but for what `change` sets; the revision is that of
/// the record.
template<typename Record, typename Change>
std::vector<uint8_t> madeBlock(const Change& change)
{
    using namespace Kor::MessageApi;
    const TQX_TypeLayout& type = *TQX_layout(TQX_recordTypeOf<Record>);
    TQX_OwnedRecord record(type);
    change(*record.as<Record>());
    std::vector<uint8_t> block(UINT16_MAX);
    const int bits = type.encode(block.data(), UINT16_MAX, record.get());
    block.resize(static_cast<size_t>(bits > 0 ? bits / 8 : 0));
    return block;
}
