#pragma once

#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/stream/StreamListener.h"
#include "tqx/log/table/TableInput.h"
#include "tqx_log_export.h"

#include <string>

namespace tqx
{

/// The blocks of one type, found by an index and read without touching the rest of the log. Rows
/// equal those of one pass over the whole log, TOWc included. Several threads can divide the pages
/// of a log. Offsets are those in `log`.
///
///     IndexedLog log("day.tqx");
///     auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
///     TableStream table(schema, std::make_unique<IndexInput>(log.getIndex(), log.getContent(),
///                                                            schema->getType()));
class TQX_LOG_API IndexInput : public TableInput
{
public:
    /// Owns none of these, which must outlive the input. The listener, which may be null, receives
    /// refused blocks. The numbers in `query` are ignored: they are those of the type.
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
