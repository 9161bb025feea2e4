#pragma once

#include "tqx/log/table/ArrowInterface.h"
#include "tqx/log/table/TableBlock.h"
#include "tqx/log/table/TableSchema.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace tqx
{

/// Fills a table with blocks, batch by batch. For one thread; several threads use one each.
///
///     auto schema = std::make_shared<TableSchema>(*findType(name), TableOptions());
///     TableBuilder builder(schema);
///     builder.append(blocks.data(), blocks.size());
///     ArrowArray batch;
///     builder.finish(batch);
class TQX_LOG_API TableBuilder
{
public:
    /// Receives blocks that the codec refuses with a negative code; they have no row.
    using Refuse = std::function<void(const TableBlock& block, int32_t code)>;

    /// Shares the schema. `refuse` may be empty; it is called while append() runs, which passes on
    /// what it throws. Throws std::bad_alloc.
    explicit TableBuilder(std::shared_ptr<const TableSchema> schema, Refuse refuse = {});
    ~TableBuilder();
    TableBuilder(const TableBuilder&) = delete;
    TableBuilder& operator=(const TableBuilder&) = delete;

    /// Adds the rows of blocks, in order, until the batch is full, and returns how many of the
    /// blocks it took. Blocks of other types are taken without a row. The bytes are not needed
    /// afterwards. Throws std::bad_alloc and DataError (more than 2^31 elements of a list in one
    /// batch), after which the builder must not be used.
    size_t append(const TableBlock* blocks, size_t count);

    /// Number of rows in the batch so far.
    size_t getRows() const;

    /// Whether the batch has as many rows or bytes as the options allow.
    bool isFull() const;

    /// Hands over the rows, as a struct of the columns of the schema, and begins the next batch.
    /// What `out` held is forgotten, not released; the caller releases what it gets, from any
    /// thread. Throws std::bad_alloc: `out` is as it was, the rows are lost.
    void finish(ArrowArray& out);

private:
    class Rows;

    std::unique_ptr<Rows> m_rows;
};

} // namespace tqx
