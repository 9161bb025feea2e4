#include "tqx/log/read/BytesCheck.h"

#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/write/RawJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace tqx
{

using namespace Kor::MessageApi;
using nlohmann::json;

namespace
{

bool isBitRange(const TQX_TypeLayout& type, const std::string& name)
{
    return std::any_of(type.fields, type.fields + type.fieldCount, [&](const auto& field) {
        return field.kind == TQX_FieldKind::Bits && name == field.name;
    });
}

/// Whether all of `part` is in `whole`; of objects, members that `whole` lacks do not count.
bool isWithin(const json& part, const json& whole)
{
    if (part.is_array() && whole.is_array()) {
        return part.size() == whole.size() &&
               std::equal(part.begin(), part.end(), whole.begin(), isWithin);
    }
    if (!part.is_object() || !whole.is_object())
        return part == whole;
    for (const auto& [name, value] : part.items()) {
        if (whole.contains(name) && !isWithin(value, whole[name]))
            return false;
    }
    return true;
}

/// The stored values of a block, null when it does not decode.
json valuesOf(const std::vector<uint8_t>& bytes)
{
    constexpr size_t headerSize = 8;
    if (bytes.size() < headerSize || bytes.size() > std::numeric_limits<uint16_t>::max())
        return nullptr;
    RecordDecoder decoder;
    if (decoder.decode({bytes.data(), static_cast<uint16_t>(bytes.size()), 0}) < 0)
        return nullptr;
    const FieldFilter everything;
    Buffer line;
    RawJson(everything).write(line, decoder.getDecoded());
    return json::parse(line.view(), nullptr, false);
}

} // namespace

std::string differenceFromBytes(const json* name, const json* fields,
                                const std::vector<uint8_t>& bytes)
{
    if (!name && !fields)
        return "";
    const json values = valuesOf(bytes);
    if (!values.is_object() || !values.contains("fields"))
        return "block";
    const auto& block = values["block"].get_ref<const std::string&>();
    if (name && (!name->is_string() || !equalNames(name->get_ref<const std::string&>(), block)))
        return "block";
    if (!fields)
        return "";
    if (!fields->is_object())
        return "fields";
    const TQX_TypeLayout& type = *findType(block);
    for (const auto& [field, value] : fields->items()) {
        const auto stored = values["fields"].find(field);
        const bool isSame =
            stored == values["fields"].end() ? isBitRange(type, field) : isWithin(value, *stored);
        if (!isSame)
            return field;
    }
    return "";
}

} // namespace tqx
