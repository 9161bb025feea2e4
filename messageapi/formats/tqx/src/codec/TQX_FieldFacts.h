#pragma once

#include "TQX_Layout.h"

#include <cstdint>
#include <string_view>

/// What the values of fields mean, besides where they are (TQX_Layout.h): units, scales, named
/// values, which value means "not available". Rows hold indices of tables that all types share, so
/// that they are small and need no relocation; the functions below look them up. Nothing here
/// allocates or throws, and everything may be used from several threads. Texts are UTF-8, end with
/// a zero after their last character and live as long as the library.
namespace Kor::MessageApi
{

/// Purpose of a field.
enum class TQX_Role : uint8_t {
    Unset = 0,     ///< sub-blocks
    Data = 1,      ///< carries data
    Structure = 2, ///< says how the block is laid out or encoded
    Reserved = 3,
};

/// The facts of one field; row i of a type is that of field i of its layout.
struct TQX_FieldFacts {
    enum Flag : uint16_t {
        Optional = 1,       ///< not in every block of the type
        Repeated = 2,       ///< any number of values
        Virtual = 4,        ///< computed, not sent
        BitMask = 8,        ///< shown as a set of bits
        Identifying = 16,   ///< distinguishes one record of the type from another
        HasDoNotUse = 32,   ///< one value means "not available"
        NamesDoNotUse = 64, ///< that value has the name "DoNotUse", which no table holds
        Described = 128,    ///< a row of a described type (TQX_DescribedType.h)
        Whole = 256, ///< an array of unsigned numbers that are one value, such as an address:
                     ///< not available when all elements are the do-not-use value
    };

    uint16_t unit;         ///< for TQX_unit(); 0 for none, as with the next
    uint16_t scale;        ///< for TQX_scale()
    uint16_t doNotUse;     ///< for TQX_doNotUse()
    uint16_t realDoNotUse; ///< for TQX_realDoNotUse()
    uint16_t namedValues;  ///< for TQX_namedValues(); equal numbers are the same table
    uint16_t inputs;       ///< for TQX_inputs()
    uint16_t flags;        ///< combination of Flag
    int8_t precision;      ///< decimals to show, -1 for none given
    TQX_Role role;
    uint8_t subFields;  ///< how many rows are bit ranges of this one
    uint8_t inputCount; ///< for TQX_inputs(); 0 for what needs no other field

    constexpr bool has(Flag flag) const { return (flags & flag) != 0; }
};

/// The facts of one record type. All but the first two are those of main blocks.
struct TQX_TypeFacts {
    uint32_t firstField;   ///< for TQX_fieldFacts()
    uint16_t registration; ///< place in the registry from 1 on, 0 for a type without message class
    uint16_t description;  ///< for TQX_description()
    uint8_t generation;    ///< version of the block, from 1 on
    bool flexrate;         ///< can be output at any rate
    bool esoc;             ///< can be output on change
    char timestamp;        ///< 'R' receiver time, 'S' transmission time, 'E' time of an event
};

/// A named value of an integer field.
struct TQX_NamedValue {
    int64_t value;
    std::string_view name;
};

/// The named values of a field, in the order in which they are described.
class TQX_NamedValues
{
public:
    class iterator
    {
    public:
        iterator(const TQX_NamedValues& values, unsigned position)
            : m_values(&values), m_index(position)
        {
        }
        TQX_NamedValue operator*() const { return (*m_values)[m_index]; }
        iterator& operator++()
        {
            ++m_index;
            return *this;
        }
        bool operator!=(const iterator& other) const { return m_index != other.m_index; }

    private:
        const TQX_NamedValues* m_values;
        unsigned m_index;
    };

    TQX_NamedValues(unsigned firstRow, unsigned count) : m_first(firstRow), m_count(count) {}
    /// Those of a described type, which has them itself.
    TQX_NamedValues(const TQX_NamedValue* values, unsigned count)
        : m_values(values), m_first(0), m_count(count)
    {
    }

    unsigned size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    /// `index` is below size().
    TQX_CODEC_API TQX_NamedValue operator[](unsigned index) const;
    iterator begin() const { return {*this, 0}; }
    iterator end() const { return {*this, m_count}; }

private:
    const TQX_NamedValue* m_values = nullptr; ///< else rows of the generated table
    unsigned m_first;
    unsigned m_count;
};

/// A field that another one is derived from and that can be not available.
struct TQX_FieldInput {
    uint16_t row;    ///< in the layout of the record that has it
    uint8_t linksUp; ///< parent links from the record of the derived value to that record
};

/// The inputs of a derived value.
struct TQX_FieldInputs {
    const TQX_FieldInput* first;
    unsigned count;

    const TQX_FieldInput* begin() const { return first; }
    const TQX_FieldInput* end() const { return first + count; }
};

/// Unit word, such as "meter"; empty for none.
TQX_CODEC_API std::string_view TQX_unit(const TQX_FieldFacts& field);

/// Symbol of a unit word, such as "m" or "m/s²"; empty for anything but a unit word of the
/// description. Takes a search: look it up once for a field, not for each value.
TQX_CODEC_API std::string_view TQX_unitSymbol(std::string_view unit);

/// The factor of a stored integer; 0 for none.
TQX_CODEC_API double TQX_scale(const TQX_FieldFacts& field);

/// The value of an integer field that means "not available", in two's complement when it is signed;
/// 0 for none, so ask for HasDoNotUse.
TQX_CODEC_API uint64_t TQX_doNotUse(const TQX_FieldFacts& field);

/// Likewise of a floating-point field; exact for one of 32 bits, too.
TQX_CODEC_API double TQX_realDoNotUse(const TQX_FieldFacts& field);

/// Whether an integer (sign-extended and cast when signed) means "not available".
inline bool TQX_isDoNotUse(const TQX_FieldFacts& field, uint64_t value)
{
    return field.has(TQX_FieldFacts::HasDoNotUse) && value == TQX_doNotUse(field);
}

/// Likewise for a floating-point value.
inline bool TQX_isRealDoNotUse(const TQX_FieldFacts& field, double value)
{
    return field.has(TQX_FieldFacts::HasDoNotUse) && value == TQX_realDoNotUse(field);
}

/// The named values of a field, without the one of NamesDoNotUse.
TQX_CODEC_API TQX_NamedValues TQX_namedValues(const TQX_FieldFacts& field);

/// The fields without which a derived value is not available, direct and indirect: what it is
/// computed from, what that is computed from, and so on. None for fields that are not derived, and
/// for those whose inputs always have a value.
TQX_CODEC_API TQX_FieldInputs TQX_inputs(const TQX_FieldFacts& field);

/// Whether all inputs of a field of `record` are available; true for a field without inputs. The
/// formula gives some number in any case. With a null parent link on the way to an input it is not
/// available.
TQX_CODEC_API bool TQX_hasInputs(const TQX_FieldFacts& field, const void* record);

/// How many tables of named values there are, the empty one at index 0 included.
TQX_CODEC_API unsigned TQX_namedValueTables();

/// The table of that index, below TQX_namedValueTables(), and the name that descriptions use.
TQX_CODEC_API TQX_NamedValues TQX_namedValueTable(unsigned index);
TQX_CODEC_API std::string_view TQX_namedValueTableName(unsigned index);

/// How many unit words there are, and the one of that index, which is below that number.
TQX_CODEC_API unsigned TQX_unitCount();
TQX_CODEC_API std::string_view TQX_unitWord(unsigned index);

/// Facts of a type, and of the field in row `row` of it, built or described.
TQX_CODEC_API const TQX_TypeFacts& TQX_factsOf(const TQX_TypeLayout& type);
TQX_CODEC_API const TQX_FieldFacts& TQX_factsOf(const TQX_TypeLayout& type, int row);
/// Likewise, of a field of its layout.
inline const TQX_FieldFacts& TQX_factsOf(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return TQX_factsOf(type, static_cast<int>(&field - type.fields));
}

/// One line on what a type is, empty for none.
TQX_CODEC_API std::string_view TQX_description(const TQX_TypeFacts& type);

} // namespace Kor::MessageApi

extern "C" {

/// Facts of a record type (1 to TQX_lastRecordType), or null when there is no such type.
TQX_CODEC_API const Kor::MessageApi::TQX_TypeFacts* TQX_typeFacts(uint32_t recordType);

/// Facts of its fields, as many as TQX_layout(recordType)->fieldCount, or null.
TQX_CODEC_API const Kor::MessageApi::TQX_FieldFacts* TQX_fieldFacts(uint32_t recordType);
}
