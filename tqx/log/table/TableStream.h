#pragma once

#include "tqx/log/table/ArrowInterface.h"
#include "tqx/log/table/TableBuilder.h"
#include "tqx/log/table/TableInput.h"
#include "tqx/log/table/TableSchema.h"
#include "tqx_log_export.h"

#include <memory>
#include <vector>

namespace tqx
{

/// A table built while it is read, in constant memory. Used by one thread at a time.
///
///     auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
///     auto input = std::make_unique<StreamInput>(blocks, schema->getType());
///     TableStream table(schema, std::move(input));
///     for (ArrowArray batch; table.next(batch); batch.release(&batch))
///         use(batch);
class TQX_LOG_API TableStream
{
public:
    /// Shares the schema and takes over the input, which gives blocks of the schema's type. Throws
    /// std::bad_alloc.
    TableStream(std::shared_ptr<const TableSchema> schema, std::unique_ptr<TableInput> input);
    ~TableStream();
    TableStream(const TableStream&) = delete;
    TableStream& operator=(const TableStream&) = delete;

    const TableSchema& getSchema() const { return *m_schema; }

    /// Writes the next batch to `out`, whose content is forgotten; the caller releases it. False at
    /// the end, and `out` is as it was; there is no batch without rows. Throws what the input
    /// throws, std::bad_alloc and DataError, and again at every later call; `out` is as it was, and
    /// the rows since the last batch are lost.
    bool next(ArrowArray& out);

private:
    void fill();

    std::shared_ptr<const TableSchema> m_schema;
    std::unique_ptr<TableInput> m_input;
    TableBuilder m_builder;
    std::vector<TableBlock> m_blocks;
    size_t m_taken = 0; ///< of the blocks
    size_t m_read = 0;
    bool m_ended = false;
};

/// Exports a table to an Arrow reader. What `out` held is forgotten, not released. Its calls return
/// 0, ENOMEM, or EIO for anything else that was thrown, with the text from get_last_error; the
/// table ends with an error. What the input refers to must live until `out` is released. Throws
/// std::bad_alloc, and leaves `out` as it was.
TQX_LOG_API void exportStream(std::unique_ptr<TableStream> table, ArrowArrayStream& out);

} // namespace tqx
