#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <cstring>
#include <vector>

/// A record area for any main block that releases what a decode left in it.
class AnyRecord
{
public:
    /// What a use does not write shows by `content`.
    explicit AnyRecord(uint8_t content = 0xa5)
        : m_area(sizeof(Kor::MessageApi::TQX_AnyRecord_u) / 8 + 1, content * 0x0101010101010101U)
    {
        clear();
    }
    ~AnyRecord() { TQX_release(m_area.data()); }
    AnyRecord(const AnyRecord&) = delete;
    AnyRecord& operator=(const AnyRecord&) = delete;

    void* get() { return m_area.data(); }
    const void* get() const { return m_area.data(); }

    template<typename Record>
    Record& as()
    {
        return *static_cast<Record*>(get());
    }

    /// Decodes into the area; what an earlier decode left is released first.
    int32_t decode(const std::vector<uint8_t>& bytes,
                   Kor::MessageApi::TQX_Context_s* context = nullptr)
    {
        return decode(bytes.data(), static_cast<uint16_t>(bytes.size()), context);
    }
    int32_t decode(const uint8_t* bytes, uint16_t size,
                   Kor::MessageApi::TQX_Context_s* context = nullptr)
    {
        TQX_release(m_area.data());
        clear();
        return TQX_decode(context, bytes, size, get());
    }

private:
    void clear() { std::memset(m_area.data(), 0, sizeof(Kor::MessageApi::TQX_MainHeader_s)); }

    std::vector<uint64_t> m_area;
};
