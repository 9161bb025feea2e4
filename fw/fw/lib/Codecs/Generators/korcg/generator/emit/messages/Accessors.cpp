#include "emit/messages/Accessors.h"

#include "emit/Names.h"
#include "emit/messages/FieldShape.h"

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
    const Value* (Message::*array)() const;
    QVector<Value> (Message::*vector)() const;
};

/// The functions of a sub-block array.
struct BlocksGetters {
    const Message* (*at)(const Message*, unsigned int);
    unsigned int (Message::*count)() const;
    int (*vectorSize)(const Message*);
};

/// get<F>() of an embedded sub-block.
struct EmbeddedGetter {
    const Message* (*get)(const Message*);
};

using FieldGetters =
    std::variant<ScalarGetter<unsigned char>, ScalarGetter<signed char>, ScalarGetter<char>,
                 ScalarGetter<unsigned short>, ScalarGetter<short>, ScalarGetter<unsigned int>,
                 ScalarGetter<int>, ScalarGetter<unsigned long long>, ScalarGetter<float>,
                 ScalarGetter<double>, RepeatedGetters<unsigned char>, RepeatedGetters<signed char>,
                 RepeatedGetters<char>, RepeatedGetters<unsigned short>, RepeatedGetters<short>,
                 RepeatedGetters<unsigned int>, RepeatedGetters<int>, RepeatedGetters<float>,
                 RepeatedGetters<double>, BlocksGetters, EmbeddedGetter>;

struct FieldAccessor {
    int recordType;
    int field; ///< row of the layout
    bool (Message::*has)() const; ///< null for a field that is always there
    FieldGetters getters;
};

struct FieldAccessors {
    const FieldAccessor* rows; ///< ascending record type, then field order
    std::size_t count;

    const FieldAccessor* begin() const { return rows; }
    const FieldAccessor* end() const { return rows + count; }
};

FieldAccessors fieldAccessors();
)";

constexpr const char* sourceText = R"(#include "TQX_MessageAccessors.h"

#include "TQX_Messages.h"

#include <iterator>

namespace
{{

template<typename Value, typename Class>
constexpr ScalarGetter<Value> scalar(Value (Class::*get)() const)
{{
    return {{static_cast<Value (Message::*)() const>(get)}};
}}

template<typename Value, typename Class>
constexpr RepeatedGetters<Value>
repeated(Value (Class::*at)(unsigned int) const, unsigned int (Class::*count)() const,
         const Value* (Class::*array)() const, QVector<Value> (Class::*vector)() const)
{{
    return {{static_cast<Value (Message::*)(unsigned int) const>(at),
            static_cast<unsigned int (Message::*)() const>(count),
            static_cast<const Value* (Message::*)() const>(array),
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

const FieldAccessor accessors[] = {{
{rows}}};

}} // namespace

FieldAccessors fieldAccessors()
{{
    return {{accessors, std::size(accessors)}};
}}
)";

constexpr const char* scalarRow = "scalar(&{C}::get{F})";

constexpr const char* repeatedRow =
    "repeated(&{C}::get{F}, &{C}::getNumberOf{F}, &{C}::get{F}Array, &{C}::get{F}Vector)";

constexpr const char* blocksRow = R"(BlocksGetters{{
         [](const Message* m, unsigned int i) -> const Message* {{
             return static_cast<const {C}*>(m)->get{F}(i);
         }},
         counter(&{C}::getNumberOf{F}),
         [](const Message* m) {{ return static_cast<const {C}*>(m)->get{F}Vector().size(); }}}})";

constexpr const char* embeddedRow = R"(EmbeddedGetter{{[](const Message* m) -> const Message* {{
         return static_cast<const {C}*>(m)->get{F}();
     }}}})";

const char* rowOf(Family family)
{
    switch (family) {
    case Family::Repeated:
        return repeatedRow;
    case Family::Blocks:
        return blocksRow;
    case Family::Embedded:
        return embeddedRow;
    case Family::Scalar:
        break;
    }
    return scalarRow;
}

} // namespace

std::string accessorsHeader()
{
    return headerText;
}

std::string accessorsSource(const Selection& classes)
{
    std::string rows;
    for (const RecordType* type : classes) {
        const std::string name = fmt::format("TQX_{}_Message", type->name);
        for (size_t row = 0; row < type->fields.size(); ++row) {
            const Field& field = type->fields[row];
            const std::string suffix = identifier(field.name);
            const std::string getters = fmt::format(fmt::runtime(rowOf(familyOf(*type, field))),
                                                    fmt::arg("C", name), fmt::arg("F", suffix));
            rows += fmt::format(
                "    {{{}, {}, {},\n     {}}},\n", type->record, row,
                isOptional(field) ? fmt::format("presence(&{}::has{})", name, suffix) : "nullptr",
                getters);
        }
    }
    return fmt::format(fmt::runtime(sourceText), fmt::arg("rows", rows));
}

} // namespace korcg::generator
