#include "ArrowStream.h"

#include "Interrupts.h"

#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

/// Reads on without the interpreter's lock.
bool readNext(const std::function<bool(ArrowArray& out)>& next, ArrowArray& out)
{
    // Readers may or may not hold the lock.
    std::optional<nb::gil_scoped_release> unlocked;
    if (PyGILState_Check())
        unlocked.emplace();
    try {
        return next(out);
    } catch (const Interrupted& interrupted) {
        // Readers of streams do not handle KeyboardInterrupt: the signal is raised again when they
        // return to the interpreter.
        PyErr_SetInterrupt();
        throw std::system_error(EINTR, std::generic_category(), interrupted.what());
    }
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

ArrowStream::ArrowStream(ArrowProducer producer, std::shared_ptr<TableCounts> counts)
    : m_describe(producer.describe), m_producer(std::move(producer)), m_counts(std::move(counts))
{
}

nb::capsule ArrowStream::handOut()
{
    if (!m_producer.next)
        throw nb::value_error("the table has already been read");
    ArrowProducer producer = std::exchange(m_producer, {});
    producer.next = [next = std::move(producer.next)](ArrowArray& out) {
        return readNext(next, out);
    };
    auto stream = std::make_unique<ArrowArrayStream>();
    exportStream(std::move(producer), *stream);
    return {stream.release(), "arrow_array_stream", destroy<ArrowArrayStream>};
}

nb::capsule ArrowStream::describe() const
{
    auto schema = std::make_unique<ArrowSchema>();
    *schema = {};
    m_describe(*schema);
    return {schema.release(), "arrow_schema", destroy<ArrowSchema>};
}

} // namespace tqx::python
