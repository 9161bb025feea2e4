#pragma once

#include "TableInputs.h"
#include "tqx/log/table/ArrowProducer.h"

#include <nanobind/nanobind.h>

#include <functional>
#include <memory>

namespace tqx::python
{

/// A table to be read once by an Arrow reader. The counts advance while it is read.
class ArrowStream
{
public:
    ArrowStream(ArrowProducer producer, std::shared_ptr<TableCounts> counts);

    /// A capsule with the stream. Throws nb::value_error at the second call.
    nanobind::capsule handOut();

    /// A capsule with the schema.
    nanobind::capsule describe() const;

    const TableCounts& getCounts() const { return *m_counts; }

private:
    std::function<void(ArrowSchema& out)> m_describe;
    ArrowProducer m_producer; ///< empty once it was taken
    std::shared_ptr<TableCounts> m_counts;
};

} // namespace tqx::python
