#pragma once

#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/stream/StreamListener.h"
#include "tqx/log/table/TableInput.h"
#include "tqx_log_export.h"

#include <string>

namespace tqx
{

/// The blocks of one type that an index finds, read without touching the rest of the log. Rows are
/// the same as those of one pass over all of it, TOWc included. Several threads can divide the
/// pages of a log. Offsets are those in `log`.
///
///     IndexedLog log("day.tqx");
///     auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
///     TableStream table(schema, std::make_unique<IndexInput>(log.getIndex(), log.getContent(),
///                                                            schema->getType()));
class TQX_LOG_API IndexInput : public TableInput
{
public:
    /// Neither is owned, both must outlive the input, and so must the listener, which hears of
    /// blocks that are refused; it may be null. Of `query`, the numbers are those of the type
    /// whatever it says.
    IndexInput(const Index& index, const RandomAccess& log,
               const Kor::MessageApi::TQX_TypeLayout& type, BlockQuery query = {},
               StreamListener* listener = nullptr);

    /// Throws SourceError when the log cannot be read.
    size_t read(TableBlock* blocks, size_t capacity) override;
    void refuse(const TableBlock& block, int32_t code) override;

private:
    const std::string& m_name;
    IndexedBlocks m_found;
    StreamListener* m_listener;
    bool m_isInMemory; ///< so that blocks stay valid
};

} // namespace tqx
