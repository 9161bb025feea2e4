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
    : schema(std::move(ofTable)), input(std::move(from)),
      builder(schema,
              [this](const TableBlock& block, int32_t code) { input->refuse(block, code); }),
      blocks(blocksPerRead)
{
}

TableStream::~TableStream() = default;

/// Reads on until the batch is full or the input ends.
void TableStream::fill()
{
    while (!ended && !builder.isFull()) {
        if (taken == read) {
            taken = 0;
            read = 0;
            read = input->read(blocks.data(), blocks.size());
            ended = read == 0;
        }
        taken += builder.append(blocks.data() + taken, read - taken);
    }
}

bool TableStream::next(ArrowArray& out)
{
    fill();
    if (builder.getRows() == 0)
        return false;
    builder.finish(out);
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
