#include "tqx/log/table/TableStream.h"

#include <cerrno>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace tqx
{

namespace
{

constexpr size_t blocksPerRead = 1024;

/// What an exported stream refers to.
struct StreamContent {
    std::unique_ptr<TableStream> table;
    std::string error;
    int code = 0; ///< of the error

    template<typename Work>
    int run(const Work& work) noexcept
    {
        if (code != 0)
            return code;
        try {
            work();
        } catch (const std::bad_alloc&) {
            code = ENOMEM;
        } catch (const std::exception& failure) {
            code = EIO;
            note(failure.what());
        } catch (...) {
            code = EIO;
        }
        return code;
    }

    void note(const char* text) noexcept
    {
        try {
            error = text;
        } catch (const std::bad_alloc&) {
            error.clear();
        }
    }
};

StreamContent& contentOf(ArrowArrayStream* stream)
{
    return *static_cast<StreamContent*>(stream->private_data);
}

int getSchema(ArrowArrayStream* stream, ArrowSchema* out)
{
    StreamContent& content = contentOf(stream);
    return content.run([&] { content.table->getSchema().exportTo(*out); });
}

int getNext(ArrowArrayStream* stream, ArrowArray* out)
{
    StreamContent& content = contentOf(stream);
    return content.run([&] {
        if (!content.table->next(*out))
            *out = {};
    });
}

const char* getLastError(ArrowArrayStream* stream)
{
    const StreamContent& content = contentOf(stream);
    if (content.code == ENOMEM)
        return "out of memory";
    return content.error.empty() ? nullptr : content.error.c_str();
}

void releaseStream(ArrowArrayStream* stream)
{
    delete static_cast<StreamContent*>(stream->private_data);
    stream->release = nullptr;
}

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
    auto content = std::make_unique<StreamContent>();
    content->table = std::move(table);
    out.get_schema = getSchema;
    out.get_next = getNext;
    out.get_last_error = getLastError;
    out.release = releaseStream;
    out.private_data = content.release();
}

} // namespace tqx
