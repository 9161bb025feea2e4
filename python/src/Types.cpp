#include "Bindings.h"
#include "TQX_codec.h"
#include "tqx/log/inspect/TypesJson.h"
#include "tqx/log/record/TypeNames.h"

#include <nanobind/stl/string.h>

#include <string>
#include <vector>

namespace tqx::python
{

namespace nb = nanobind;
using namespace Kor::MessageApi;

namespace
{

/// All types with what is known of their fields, as a JSON array.
std::string allTypes()
{
    std::vector<const TQX_TypeLayout*> types;
    forEachType([&](const TQX_TypeLayout& type) { types.push_back(&type); });
    Buffer out;
    appendTypesJson(out, types);
    return std::string(out.view());
}

} // namespace

void bindTypes(nb::module_& module)
{
    module.def("all_types", allTypes);
    module.def("error_name", [](int32_t code) { return std::string(TQX_errorName(code)); });
}

} // namespace tqx::python
