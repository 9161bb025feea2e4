#include "tqx/log/table/TableStream.h"

#include "tqx/log/table/ArrowProducer.h"

#include <utility>

namespace tqx
{

namespace
{

constexpr size_t blocksPerRead = 1024;

} // namespace

TableStream::TableStream(std::shared_ptr<const TableSchema> ofTable,
                         std::unique_ptr<TableInput> from)
    : m_schema(std::move(ofTable)), m_input(std::move(from)),
      m_builder(m_schema,
                [this](const TableBlock& block, int32_t code) { m_input->refuse(block, code); }),
      m_blocks(blocksPerRead)
{
}

TableStream::~TableStream() = default;

/// Reads on until the batch is full or the input ends.
void TableStream::fill()
{
    while (!m_ended && !m_builder.isFull()) {
        if (m_taken == m_read) {
            m_taken = 0;
            m_read = 0;
            m_read = m_input->read(m_blocks.data(), m_blocks.size());
            m_ended = m_read == 0;
        }
        m_taken += m_builder.append(m_blocks.data() + m_taken, m_read - m_taken);
    }
}

bool TableStream::next(ArrowArray& out)
{
    fill();
    if (m_builder.getRows() == 0)
        return false;
    m_builder.finish(out);
    return true;
}

void exportStream(std::unique_ptr<TableStream> table, ArrowArrayStream& out)
{
    const std::shared_ptr<TableStream> shared = std::move(table);
    exportStream({[shared](ArrowSchema& schema) { shared->getSchema().exportTo(schema); },
                  [shared](ArrowArray& batch) { return shared->next(batch); }},
                 out);
}

} // namespace tqx
