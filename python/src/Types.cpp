#include "Bindings.h"
#include "tqx/log/DataError.h"
#include "tqx/log/inspect/TypesJson.h"
#include "tqx/log/record/TypeNames.h"

#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <string>
#include <vector>

namespace tqx::python
{

namespace nb = nanobind;
using namespace Kor::MessageApi;

namespace
{

/// All types with what is known of their fields, as a JSON array.
std::string allTypes(const Schema& schema)
{
    std::vector<const TQX_TypeLayout*> types;
    schema.forEachType([&](const TQX_TypeLayout& type) { types.push_back(&type); });
    Buffer out;
    appendTypesJson(out, types);
    return std::string(out.view());
}

/// Name of the type with that block number, or nothing.
std::string numberName(const Schema& schema, uint16_t number)
{
    const TQX_TypeLayout* const type = schema.getBlockType(number);
    return type ? type->name : std::string();
}

/// The name of a type as it is written.
std::string typeName(const Schema& schema, const std::string& name)
{
    const TQX_TypeLayout* const type = schema.findType(name);
    if (!type)
        throw DataError(unknownType(name, schema));
    return type->name;
}

} // namespace

void bindTypes(nb::module_& module)
{
    nb::class_<Schema>(module, "Schema")
        .def(nb::init<>())
        .def_static("read", &Schema::read)
        .def("all_types", allTypes)
        .def("number_name", numberName)
        .def("type_name", typeName)
        .def("error_name", &Schema::getErrorName);
}

} // namespace tqx::python
