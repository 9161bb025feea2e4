#include "emit/metadata/Registration.h"

#include "emit/metadata/FieldFacts.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

void emitRegistration(const Selection& types, Output& output)
{
    Selection ordered = types;
    std::stable_sort(ordered.begin(), ordered.end(), [](const RecordType* a, const RecordType* b) {
        return a->registration < b->registration;
    });

    std::string includes;
    std::string registration;
    for (const RecordType* type : ordered) {
        const std::string name = messageInfoClass(type->name);
        includes += fmt::format("#include \"{}.h\"\n", name);
        registration += fmt::format("    {{TQX_messageInstance<{}>, {}}},\n", name, type->isMain());
    }

    std::string cases;
    for (const RecordType* type : types) {
        cases += fmt::format("    case {}:\n        return &TQX_TypeRows::{};\n", type->record,
                             type->name);
    }

    output.write("TQX_Registration.cpp", "the whole description",
                 fmt::format(R"(#include "TQX_Registration.h"

#include "TQX_Instances.h"
#include "TQX_TypeRows.h"
{includes}
#include <iterator>

static constexpr TQX_RegistrationRow registration[] = {{
{registration}}};

TQX_RegistrationList TQX_registration()
{{
    return {{registration, static_cast<unsigned>(std::size(registration))}};
}}

const TQX_TypeRow* TQX_typeRow(uint32_t recordType)
{{
    switch (recordType) {{
{cases}    default:
        return nullptr;
    }}
}}
)",
                             fmt::arg("includes", includes), fmt::arg("registration", registration),
                             fmt::arg("cases", cases)));
}

} // namespace korcg::generator
