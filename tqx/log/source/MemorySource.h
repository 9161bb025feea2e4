#pragma once

#include "tqx/log/source/ByteSource.h"
#include "tqx_log_export.h"

#include <string>
#include <utility>

namespace tqx
{

/// Bytes in memory. They belong to the caller and must outlive the source. Never throws.
class TQX_LOG_API MemorySource : public ByteSource
{
public:
    /// `label` names it in messages.
    MemorySource(const uint8_t* data, size_t count, std::string label = "memory")
        : m_content(data), m_size(count), m_name(std::move(label))
    {
    }

    size_t read(uint8_t* bytes, size_t capacity) override;
    uint64_t skip(uint64_t count) override;
    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

private:
    const uint8_t* m_content;
    size_t m_size;
    size_t m_position = 0;
    std::string m_name;
};

} // namespace tqx
