#include "ArrowStream.h"
#include "Bindings.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/TableStream.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;
using namespace Kor::MessageApi;

namespace
{

/// The requested table, in terms of Python.
struct TableRequest {
    Schema schema;
    std::string type;
    std::vector<std::string> fields;
    std::string rows;
    std::string where;
    std::optional<GnssMillis> from;
    std::optional<GnssMillis> to;
    uint8_t revisions = 0xff;
    bool isScaled = true;
    bool isNamed = true;
    bool hidesDoNotUse = true;
    bool hasUtc = false;
    bool hasOffset = true;
    bool hasFile = false;
    size_t batchRows = 65536;
};

std::shared_ptr<TableSchema> schemaOf(const TableRequest& request)
{
    const TQX_TypeLayout* const type = request.schema.findType(request.type);
    if (!type)
        throw DataError(unknownType(request.type, request.schema));
    TableOptions options;
    if (!request.fields.empty())
        options.fields = FieldFilter(request.fields, request.schema);
    options.rows = request.rows;
    options.isScaled = request.isScaled;
    options.isNamed = request.isNamed;
    options.hidesDoNotUse = request.hidesDoNotUse;
    options.hasUtc = request.hasUtc;
    options.hasOffset = request.hasOffset;
    options.hasFile = request.hasFile;
    options.batchRows = request.batchRows;
    return std::make_shared<TableSchema>(*type, options);
}

BlockChoice choiceOf(const TableRequest& request)
{
    BlockChoice choice;
    choice.from = request.from;
    choice.to = request.to;
    choice.revisions = request.revisions;
    if (!request.where.empty()) {
        const TypeSelection types({request.type}, {}, request.schema);
        choice.where = std::make_shared<Condition>(request.where, types);
    }
    return choice;
}

ArrowStream streamOf(const std::shared_ptr<TableSchema>& schema, const Schema& types,
                     std::vector<std::unique_ptr<TableInput>> inputs, BlockChoice choice)
{
    auto counts = std::make_shared<TableCounts>();
    auto input = std::make_unique<ChosenInput>(std::move(inputs), std::move(choice), types, counts);
    auto table = std::make_shared<TableStream>(schema, std::move(input));
    // Layouts live as long as their types.
    return {{[schema, types](ArrowSchema& out) { schema->exportTo(out); },
             [table, types](ArrowArray& out) { return table->next(out); }},
            counts};
}

/// A table of whole logs, by their indexes.
ArrowStream readLogs(const std::vector<std::shared_ptr<LogFile>>& logs, const TableRequest& request)
{
    const auto schema = schemaOf(request);
    BlockChoice choice = choiceOf(request);
    std::vector<std::unique_ptr<TableInput>> inputs;
    for (const auto& log : logs)
        inputs.push_back(std::make_unique<WholeInput>(log, schema->getType(), choice));
    return streamOf(schema, request.schema, std::move(inputs), std::move(choice));
}

/// A table of a part of a log.
ArrowStream readPart(const std::vector<std::string>& paths, const Partition& part,
                     const TableRequest& request)
{
    const auto schema = schemaOf(request);
    BlockChoice choice = choiceOf(request);
    std::vector<std::unique_ptr<TableInput>> inputs;
    inputs.push_back(
        std::make_unique<PartInput>(paths, part, request.schema, schema->getType(), choice));
    return streamOf(schema, request.schema, std::move(inputs), std::move(choice));
}

nb::dict countsOf(const ArrowStream& stream)
{
    const TableCounts& counts = stream.getCounts();
    nb::dict all;
    all["found"] = counts.found;
    all["selected"] = counts.selected;
    all["refused"] = counts.refused;
    all["first_refused"] = counts.firstRefused;
    return all;
}

} // namespace

void bindTables(nb::module_& module)
{
    nb::class_<TableRequest>(module, "TableRequest")
        .def(nb::init<>())
        .def_rw("schema", &TableRequest::schema)
        .def_rw("type", &TableRequest::type)
        .def_rw("fields", &TableRequest::fields)
        .def_rw("rows", &TableRequest::rows)
        .def_rw("where", &TableRequest::where)
        .def_rw("start", &TableRequest::from, nb::arg().none())
        .def_rw("end", &TableRequest::to, nb::arg().none())
        .def_rw("revisions", &TableRequest::revisions)
        .def_rw("scaled", &TableRequest::isScaled)
        .def_rw("named", &TableRequest::isNamed)
        .def_rw("hide_do_not_use", &TableRequest::hidesDoNotUse)
        .def_rw("utc", &TableRequest::hasUtc)
        .def_rw("offset", &TableRequest::hasOffset)
        .def_rw("file", &TableRequest::hasFile)
        .def_rw("batch_rows", &TableRequest::batchRows);

    nb::class_<ArrowStream>(module, "ArrowStream")
        .def(
            "__arrow_c_stream__",
            [](ArrowStream& stream, const nb::object&) { return stream.handOut(); },
            nb::arg("requested_schema") = nb::none())
        .def("__arrow_c_schema__", &ArrowStream::describe)
        .def("counts", countsOf);

    module.def("read_logs", readLogs);
    module.def("read_part", readPart);
    module.def("columns_of",
               [](const TableRequest& request) { return schemaOf(request)->getNames(); });
    module.def("check", [](const TableRequest& request) {
        schemaOf(request);
        choiceOf(request);
    });
}

} // namespace tqx::python
