#include "tqx/gnss/position/FieldNames.h"

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"

namespace tqx
{

using namespace Kor::MessageApi;

std::string_view valueName(uint32_t recordType, std::string_view field, int64_t value)
{
    const TQX_TypeLayout& layout = *TQX_layout(recordType);
    for (unsigned i = 0; i < layout.fieldCount; ++i) {
        if (layout.fields[i].name != field)
            continue;
        for (const TQX_NamedValue named : TQX_namedValues(TQX_fieldFacts(recordType)[i])) {
            if (named.value == value)
                return named.name;
        }
    }
    return {};
}

} // namespace tqx
