#pragma once

#include "TQX_Context.h"
#include "TQX_Layout.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/table/TableBlock.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Where a table gets its blocks from: a whole stream, or what an index finds.
class TQX_LOG_API TableInput
{
public:
    virtual ~TableInput();

    /// Writes the next blocks to `blocks`, at most `capacity` of them, and returns how many: 0 only
    /// at the end. Their bytes stay valid until the next call. Blocks of other types may be among
    /// them. Several at a time are faster than one by one. May throw anything; the table then ends.
    virtual size_t read(TableBlock* blocks, size_t capacity) = 0;

    /// Receives a block of the table's type that the codec refused with `code`, and that has no
    /// row; called between two reads.
    virtual void refuse(const TableBlock& block, int32_t code);

protected:
    TableInput() = default;
    TableInput(const TableInput&) = default;
    TableInput& operator=(const TableInput&) = default;
};

/// The blocks of one type from a stream. All blocks of known types, whether they decode or not,
/// count for the week of TOWc, even those that the stream returned before.
///
///     BlockStream blocks(source);
///     StreamInput input(blocks, *findType(name));
class TQX_LOG_API StreamInput : public TableInput
{
public:
    /// The stream is not owned and must outlive the input. Blocks that are refused are reported as
    /// its undecodable ones.
    StreamInput(BlockStream& stream, const Kor::MessageApi::TQX_TypeLayout& type);

    size_t read(TableBlock* blocks, size_t capacity) override;
    void refuse(const TableBlock& block, int32_t code) override;

private:
    BlockStream& m_stream;
    uint16_t m_number;
    Kor::MessageApi::TQX_Context_s m_context; ///< after the last block that was read
};

} // namespace tqx
