#include "SameFields.h"

using namespace Kor::MessageApi;
using nlohmann::json;

namespace
{

testing::AssertionResult differ(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                const json& expected, const json& actual)
{
    return testing::AssertionFailure()
           << type.name << "::" << field.name << ": " << actual << " instead of " << expected;
}

bool sameElement(const TQX_FieldLayout& field, const json& expected, const json& actual)
{
    if (field.type == TQX_MemberType::F32 && expected.is_number() && actual.is_number())
        return expected.get<float>() == actual.get<float>();
    return expected == actual;
}

testing::AssertionResult sameField(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                   const json& expected, const json& actual)
{
    if (expected.is_array() != actual.is_array() ||
        (expected.is_array() && expected.size() != actual.size()))
        return differ(type, field, expected, actual);
    for (size_t i = 0; i < (expected.is_array() ? expected.size() : 1); ++i) {
        const json& one = expected.is_array() ? expected[i] : expected;
        const json& other = expected.is_array() ? actual[i] : actual;
        if (field.recordType != 0) {
            const auto result = sameFields(*TQX_layout(field.recordType), one, other);
            if (!result)
                return result;
        } else if (!sameElement(field, one, other)) {
            return differ(type, field, one, other);
        }
    }
    return testing::AssertionSuccess();
}

} // namespace

testing::AssertionResult sameFields(const TQX_TypeLayout& type, const json& expected,
                                    const json& actual)
{
    size_t known = 0;
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        const bool isExpected = expected.contains(field.name);
        if (isExpected != actual.contains(field.name)) {
            return testing::AssertionFailure()
                   << type.name << "::" << field.name << (isExpected ? " is missing" : " is there");
        }
        if (!isExpected)
            continue;
        ++known;
        const auto result = sameField(type, field, expected[field.name], actual[field.name]);
        if (!result)
            return result;
    }
    if (known != expected.size())
        return testing::AssertionFailure() << type.name << ": unknown fields in " << expected;
    return testing::AssertionSuccess();
}

const TQX_TypeLayout* layoutOf(const std::string& name)
{
    for (uint32_t recordType = 1; recordType <= TQX_lastRecordType; ++recordType) {
        const TQX_TypeLayout* layout = TQX_layout(recordType);
        if (layout && layout->blockNumber != 0 && name == layout->name)
            return layout;
    }
    return nullptr;
}
