#include "emit/messages/Accessors.h"

#include "emit/messages/FieldShape.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

constexpr const char* headerText = R"(#pragma once

#include "Message.h"

#include <QVector>

#include <cstddef>
#include <variant>

/// get<F>() of a plain field.
template<typename Value>
struct ScalarGetter {
    Value (Message::*get)() const;
};

/// The functions of a repeated field of numbers or characters.
template<typename Value>
struct RepeatedGetters {
    Value (Message::*at)(unsigned int) const;
    unsigned int (Message::*count)() const;
    Value* (Message::*array)();
    const Value* (Message::*constArray)() const;
    QVector<Value> (Message::*vector)() const;
};

/// The functions of a sub-block array.
struct BlocksGetters {
    Message* (*at)(Message*, unsigned int);
    const Message* (*constAt)(const Message*, unsigned int);
    unsigned int (Message::*count)() const;
    QVector<const Message*> (*vector)(Message*);
    QVector<const Message*> (*constVector)(const Message*);
};

/// Both forms of get<F>() of an embedded sub-block.
struct EmbeddedGetters {
    Message* (*get)(Message*);
    const Message* (*constGet)(const Message*);
};

using FieldGetters = std::variant<
    ScalarGetter<unsigned char>, ScalarGetter<signed char>, ScalarGetter<char>,
    ScalarGetter<unsigned short>, ScalarGetter<short>, ScalarGetter<unsigned int>,
    ScalarGetter<int>, ScalarGetter<unsigned long long>, ScalarGetter<float>,
    ScalarGetter<double>, RepeatedGetters<unsigned char>, RepeatedGetters<signed char>,
    RepeatedGetters<char>, RepeatedGetters<unsigned short>, RepeatedGetters<short>,
    RepeatedGetters<unsigned int>, RepeatedGetters<int>, RepeatedGetters<float>,
    RepeatedGetters<double>, BlocksGetters, EmbeddedGetters>;

struct FieldAccessor {
    int recordType;
    int field; ///< row of the layout
    bool (Message::*has)() const; ///< null for a field that is always there
    FieldGetters getters;
};

/// A message class, and how to make a message of it that has no record.
struct MessageMaker {
    int recordType;
    Message* (*make)();
};

template<typename Row>
struct Rows {
    const Row* rows;
    std::size_t count;

    const Row* begin() const { return rows; }
    const Row* end() const { return rows + count; }
};

/// The fields of a type in their order; none for a type without message class.
Rows<FieldAccessor> fieldAccessors(int recordType);
/// All message classes in ascending record type.
Rows<MessageMaker> messageMakers();
)";

constexpr const char* sourceText = R"(#include "TQX_MessageAccessors.h"

#include "TQX_Messages.h"

#include <algorithm>
#include <iterator>

namespace
{{

template<typename Value, typename Class>
constexpr ScalarGetter<Value> scalar(Value (Class::*get)() const)
{{
    return {{static_cast<Value (Message::*)() const>(get)}};
}}

template<typename Value, typename Class>
constexpr RepeatedGetters<Value> repeated(
    Value (Class::*at)(unsigned int) const, unsigned int (Class::*count)() const,
    Value* (Class::*array)(), const Value* (Class::*constArray)() const,
    QVector<Value> (Class::*vector)() const)
{{
    return {{static_cast<Value (Message::*)(unsigned int) const>(at),
        static_cast<unsigned int (Message::*)() const>(count),
        static_cast<Value* (Message::*)()>(array),
        static_cast<const Value* (Message::*)() const>(constArray),
        static_cast<QVector<Value> (Message::*)() const>(vector)}};
}}

template<typename Class>
constexpr auto presence(bool (Class::*has)() const)
{{
    return static_cast<bool (Message::*)() const>(has);
}}

template<typename Class>
constexpr auto counter(unsigned int (Class::*count)() const)
{{
    return static_cast<unsigned int (Message::*)() const>(count);
}}

template<typename Child>
QVector<const Message*> listOf(const QVector<Child>& children)
{{
    return {{children.begin(), children.end()}};
}}

const FieldAccessor accessors[] = {{
{rows}}};

const MessageMaker makers[] = {{
{makers}}};

}} // namespace

Rows<FieldAccessor> fieldAccessors(int recordType)
{{
    const auto isBefore = [](const FieldAccessor& row, int type) {{ return row.recordType < type; }};
    const FieldAccessor* end = std::end(accessors);
    const FieldAccessor* first = std::lower_bound(std::begin(accessors), end, recordType, isBefore);
    const FieldAccessor* last = std::lower_bound(first, end, recordType + 1, isBefore);
    return {{first, static_cast<std::size_t>(last - first)}};
}}

Rows<MessageMaker> messageMakers()
{{
    return {{makers, std::size(makers)}};
}}
)";

constexpr const char* scalarRow = "scalar(&{C}::get{F})";

constexpr const char* repeatedRow =
    "repeated(&{C}::get{F}, &{C}::getNumberOf{F}, &{C}::get{F}Array, "
    "&{C}::get{F}Array, &{C}::get{F}Vector)";

constexpr const char* blocksRow = R"(BlocksGetters{{
            [](Message* m, unsigned int i) -> Message* {{
                return static_cast<{C}*>(m)->get{F}(i);
            }},
            [](const Message* m, unsigned int i) -> const Message* {{
                return static_cast<const {C}*>(m)->get{F}(i);
            }},
            counter(&{C}::getNumberOf{F}),
            [](Message* m) {{
                return listOf(static_cast<{C}*>(m)->get{F}Vector());
            }},
            [](const Message* m) {{
                return listOf(static_cast<const {C}*>(m)->get{F}Vector());
            }}}})";

constexpr const char* embeddedRow = R"(EmbeddedGetters{{
            [](Message* m) -> Message* {{
                return static_cast<{C}*>(m)->get{F}();
            }},
            [](const Message* m) -> const Message* {{
                return static_cast<const {C}*>(m)->get{F}();
            }}}})";

/// By family, in the order of that enumeration.
constexpr const char* rowTexts[] = {scalarRow, repeatedRow, blocksRow, embeddedRow};

constexpr const char* makerRow =
    "    {{{type}, []() -> Message* {{ return new {C}(nullptr, {parent}false); }}}},\n";

} // namespace

std::string accessorsHeader()
{
    return headerText;
}

std::string accessorsSource(const Selection& classes)
{
    std::string rows;
    std::string makers;
    for (const RecordType* type : classes) {
        const std::string name = fmt::format("TQX_{}_Message", type->name);
        makers +=
            fmt::format(fmt::runtime(makerRow), fmt::arg("type", type->record), fmt::arg("C", name),
                        fmt::arg("parent", type->isMain() ? "" : "nullptr, "));
        for (size_t row = 0; row < type->fields.size(); ++row) {
            const Field& field = type->fields[row];
            const std::string suffix = identifier(field.name);
            const char* text = rowTexts[static_cast<size_t>(familyOf(*type, field))];
            const std::string getters =
                fmt::format(fmt::runtime(text), fmt::arg("C", name), fmt::arg("F", suffix));
            rows += fmt::format(
                "    {{{}, {}, {},\n        {}}},\n", type->record, row,
                isOptional(field) ? fmt::format("presence(&{}::has{})", name, suffix) : "nullptr",
                getters);
        }
    }
    return fmt::format(fmt::runtime(sourceText), fmt::arg("rows", rows),
                       fmt::arg("makers", makers));
}

} // namespace korcg::generator
