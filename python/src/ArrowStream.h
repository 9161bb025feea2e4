#pragma once

#include "TableInputs.h"
#include "tqx/log/table/ArrowInterface.h"

#include <nanobind/nanobind.h>

#include <functional>
#include <memory>
#include <string>

namespace tqx::python
{

/// Writes a schema, or throws.
using WriteSchema = std::function<void(ArrowSchema& out)>;

/// Writes the next batch, false at the end, or throws.
using NextBatch = std::function<bool(ArrowArray& out)>;

/// A table to be read once by an Arrow reader. The counts advance while it is read.
class ArrowStream
{
public:
    ArrowStream(WriteSchema schema, NextBatch next, std::shared_ptr<TableCounts> counts);

    /// A capsule with the stream. Throws nb::value_error at the second call.
    nanobind::capsule handOut();

    /// A capsule with the schema.
    nanobind::capsule describe() const;

    const TableCounts& getCounts() const { return *m_counts; }

private:
    WriteSchema m_schema;
    NextBatch m_next;
    std::shared_ptr<TableCounts> m_counts;
};

} // namespace tqx::python
