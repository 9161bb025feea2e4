#pragma once

#include "TQX_codec.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Kor::MessageApi
{

/// Makes raw memory for a record safe to release: previous content is forgotten, not freed.
TQX_CODEC_API void TQX_markEmpty(void* record);

/// A record of any type, with its memory and the arrays that it owns.
///
///     TQX_OwnedRecord record;
///     if (record.decode(&context, bytes, size) > 0)
///         if (const auto* position = record.as<TQX_PVTGeodetic2_s>())
///             use(position->Height);
///
/// Using one record for many blocks costs one allocation in all. Moving one is cheap and leaves
/// behind an empty record that may only be assigned to or destroyed. Not thread safe.
class TQX_CODEC_API TQX_OwnedRecord
{
public:
    /// An empty record with room for the largest type. Throws std::bad_alloc.
    TQX_OwnedRecord();

    /// A record of this type with its starting values, and room for that type alone. Throws
    /// std::bad_alloc.
    explicit TQX_OwnedRecord(const TQX_TypeLayout& type);

    ~TQX_OwnedRecord();
    TQX_OwnedRecord(TQX_OwnedRecord&& other) noexcept;
    TQX_OwnedRecord& operator=(TQX_OwnedRecord&& other) noexcept;
    TQX_OwnedRecord(const TQX_OwnedRecord&) = delete;
    TQX_OwnedRecord& operator=(const TQX_OwnedRecord&) = delete;

    /// Decodes a framed block of a built-in type, replacing the content of the record, see
    /// TQX_decode(). Only for a record with room for the largest of these. After a failure the
    /// record is empty.
    int32_t decode(TQX_Context_s* context, const uint8_t* bytes, uint16_t size);

    /// Likewise, a block of this main block's type, for which room is made: see TQX_decodeAs().
    /// The layout must outlive the record, as with init(). Throws std::bad_alloc.
    int32_t decode(const TQX_TypeLayout& type, TQX_Context_s* context, const uint8_t* bytes,
                   uint16_t size);

    /// Gives the record the starting values of a type, for which room is made. Throws
    /// std::bad_alloc.
    void init(const TQX_TypeLayout& type);

    /// Frees what the record owns and empties it.
    void clear();

    /// Layout of the current type, null when the record is empty.
    const TQX_TypeLayout* layout() const
    {
        return m_described ? m_described : TQX_layout(header().korcg_type);
    }

    bool isEmpty() const { return header().korcg_type == 0; }

    /// The record as one of its type; null when it is of another type or empty.
    template<typename Record>
    Record* as()
    {
        return static_cast<Record*>(is<Record>() ? m_memory.get() : nullptr);
    }
    template<typename Record>
    const Record* as() const
    {
        return static_cast<const Record*>(is<Record>() ? m_memory.get() : nullptr);
    }

    /// Memory of the record, for the generic functions.
    void* get() { return m_memory.get(); }
    const void* get() const { return m_memory.get(); }

private:
    struct Deleter {
        void operator()(void* memory) const;
    };

    explicit TQX_OwnedRecord(size_t size);
    void makeRoom(const TQX_TypeLayout& type);

    const KorcgHeader_s& header() const
    {
        return *static_cast<const KorcgHeader_s*>(m_memory.get());
    }

    template<typename Record>
    bool is() const
    {
        static_assert(TQX_recordTypeOf<Record> != 0, "not a record of this format");
        return header().korcg_type == TQX_recordTypeOf<Record>;
    }

    std::unique_ptr<void, Deleter> m_memory;
    size_t m_size;
    const TQX_TypeLayout* m_described = nullptr; ///< type of the record, when it is a described one
};

} // namespace Kor::MessageApi
