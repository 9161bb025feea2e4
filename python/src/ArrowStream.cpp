#include "ArrowStream.h"

#include "Interrupts.h"

#include <cerrno>
#include <exception>
#include <new>
#include <optional>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

/// What an exported stream refers to.
struct Content {
    WriteSchema schema;
    NextBatch next;
    std::string error;
    int code = 0;

    template<typename Work>
    int run(const Work& work) noexcept
    {
        if (code != 0)
            return code;
        try {
            work();
        } catch (const std::bad_alloc&) {
            code = ENOMEM;
        } catch (const Interrupted&) {
            // Readers of streams do not handle KeyboardInterrupt: the signal is raised again when
            // they return to the interpreter.
            code = EINTR;
            PyErr_SetInterrupt();
        } catch (const std::exception& failure) {
            code = EIO;
            try {
                error = failure.what();
            } catch (const std::bad_alloc&) {
                error.clear();
            }
        }
        return code;
    }
};

Content& contentOf(ArrowArrayStream* stream)
{
    return *static_cast<Content*>(stream->private_data);
}

int getSchema(ArrowArrayStream* stream, ArrowSchema* out)
{
    Content& content = contentOf(stream);
    return content.run([&] { content.schema(*out); });
}

int getNext(ArrowArrayStream* stream, ArrowArray* out)
{
    Content& content = contentOf(stream);
    // Readers may or may not hold the interpreter's lock.
    std::optional<nb::gil_scoped_release> unlocked;
    if (PyGILState_Check())
        unlocked.emplace();
    return content.run([&] {
        if (!content.next(*out))
            *out = {};
    });
}

const char* getLastError(ArrowArrayStream* stream)
{
    const Content& content = contentOf(stream);
    if (content.code == ENOMEM)
        return "out of memory";
    return content.error.empty() ? nullptr : content.error.c_str();
}

void releaseStream(ArrowArrayStream* stream)
{
    delete static_cast<Content*>(stream->private_data);
    stream->release = nullptr;
}

/// Frees what the capsule holds, released or not.
template<typename Structure>
void destroy(void* pointer) noexcept
{
    auto* structure = static_cast<Structure*>(pointer);
    if (structure->release)
        structure->release(structure);
    delete structure;
}

} // namespace

ArrowStream::ArrowStream(WriteSchema schema, NextBatch next, std::shared_ptr<TableCounts> counts)
    : m_schema(std::move(schema)), m_next(std::move(next)), m_counts(std::move(counts))
{
}

nb::capsule ArrowStream::handOut()
{
    if (!m_next)
        throw nb::value_error("the table has already been read");
    auto content = std::make_unique<Content>();
    content->schema = m_schema;
    content->next = std::exchange(m_next, nullptr);
    auto stream = std::make_unique<ArrowArrayStream>();
    *stream = {getSchema, getNext, getLastError, releaseStream, content.release()};
    return {stream.release(), "arrow_array_stream", destroy<ArrowArrayStream>};
}

nb::capsule ArrowStream::describe() const
{
    auto schema = std::make_unique<ArrowSchema>();
    *schema = {};
    m_schema(*schema);
    return {schema.release(), "arrow_schema", destroy<ArrowSchema>};
}

} // namespace tqx::python
