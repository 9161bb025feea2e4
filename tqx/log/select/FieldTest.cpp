#include "tqx/log/select/FieldTest.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/MemberBits.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/Elements.h"
#include "tqx/log/select/NamePattern.h"
#include "tqx/log/text/Latin1.h"
#include "tqx/log/text/PrintableText.h"

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

bool holds(Comparison comparison, int order)
{
    switch (comparison) {
    case Comparison::Equal:
        return order == 0;
    case Comparison::NotEqual:
        return order != 0;
    case Comparison::Less:
        return order < 0;
    case Comparison::LessOrEqual:
        return order <= 0;
    case Comparison::Greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

std::string withoutTrailingBlanks(std::string text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

bool isReal(const TQX_FieldLayout& field)
{
    return field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64;
}

double realOf(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    return MemberBits(field, false)
        .real(loadWord(TQX_element(field, record, index), TQX_elementSize(field)));
}

/// In two's complement when it is signed.
uint64_t integerOf(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    return TQX_isSigned(field) ? static_cast<uint64_t>(TQX_signedValue(field, record, index))
                               : TQX_unsignedValue(field, record, index);
}

} // namespace

FieldTest::FieldTest(const FieldPath& fieldPath, Comparison wanted)
    : m_path(fieldPath), m_facts(&fieldPath.field.facts()), m_comparison(wanted)
{
}

std::optional<FieldTest> FieldTest::make(const FieldPath& path, const ExpressionTerm& term,
                                         std::string& why)
{
    FieldTest test(path, term.comparison);
    test.m_isTime = isContinuousTime(*path.field.layout);
    if (term.comparison == Comparison::Has)
        return test;
    std::string problem;
    if (path.field.layout->recordType != 0) {
        problem = "holds sub-blocks; compare a field inside, or test for it with has";
    } else {
        problem = term.isName ? test.prepareName(term.value.text) : test.prepareNumber(term.number);
    }
    if (problem.empty())
        return test;
    why = std::string(path.field.layout->name) + ' ' + problem;
    return std::nullopt;
}

std::string FieldTest::prepareName(const std::string& name)
{
    if (m_comparison != Comparison::Equal && m_comparison != Comparison::NotEqual &&
        m_comparison != Comparison::Like)
        return "can be compared with a name or text by ==, != and like only";
    if (m_path.field.layout->type == TQX_MemberType::Char) {
        m_subject = Subject::Text;
        m_text = withoutTrailingBlanks(name);
        return {};
    }
    m_subject = Subject::Name;
    std::vector<std::string_view> names;
    for (const TQX_NamedValue& each : TQX_namedValues(*m_facts)) {
        const auto value = static_cast<uint64_t>(each.value);
        if (TQX_isDoNotUse(*m_facts, value))
            continue;
        names.push_back(each.name);
        if (m_comparison == Comparison::Like ? matchesPattern(each.name, name)
                                             : equalNames(each.name, name))
            m_named.push_back(value);
    }
    if (!m_named.empty())
        return {};
    if (names.empty())
        return "has no names for its values; compare it with a number";
    if (m_comparison == Comparison::Like)
        return "has no value with a name like '" + shortened(name) + '\'';
    const std::string meant = nearest(name, names);
    return "has no value named '" + shortened(name) + '\'' +
           (meant.empty() ? "" : ", did you mean '" + meant + "'?");
}

std::string FieldTest::prepareNumber(const Number& value)
{
    if (m_path.field.layout->type == TQX_MemberType::Char)
        return "is a text; compare it with one in quotes";
    m_subject = Subject::Number;
    m_number = value;
    if (TQX_scale(*m_facts) != 0) {
        m_scale.emplace(TQX_scale(*m_facts));
        // A number that a float shows as 0.1 is meant to equal 0.1.
    } else if (m_path.field.layout->type == TQX_MemberType::F32) {
        m_number = Number::ofReal(static_cast<double>(static_cast<float>(value.toDouble())));
    }
    return {};
}

bool FieldTest::passes(const void* record) const
{
    return anyElement(m_path.through, record,
                      [this](const void* owner) { return passesHere(owner); });
}

bool FieldTest::passesHere(const void* record) const
{
    const uint32_t count = countOf(m_path.field, record);
    if (m_subject == Subject::Text)
        return count != 0 && passesText(record);
    if (m_facts->inputCount != 0 && !TQX_hasInputs(*m_facts, record))
        return false;
    const TQX_FieldLayout& field = *m_path.field.layout;
    const bool isWhole =
        m_facts->has(TQX_FieldFacts::Whole) &&
        isWholeValue(*m_facts, TQX_element(field, record), TQX_elementSize(field), count);
    for (uint32_t i = 0; i < count; ++i) {
        if (passesElement(record, i, isWhole))
            return true;
    }
    return false;
}

bool FieldTest::passesText(const void* record) const
{
    Buffer value;
    appendLatin1(value, textOf(*m_path.field.layout, record));
    const std::string found = withoutTrailingBlanks(std::string(value.view()));
    if (m_comparison == Comparison::Like)
        return matchesPattern(found, m_text);
    return (found == m_text) == (m_comparison == Comparison::Equal);
}

bool FieldTest::passesElement(const void* record, uint32_t index, bool isWhole) const
{
    const TQX_FieldLayout& field = *m_path.field.layout;
    if (field.recordType != 0 || field.type == TQX_MemberType::Char)
        return true;
    if (isReal(field)) {
        const double value = realOf(field, record, index);
        return !TQX_isRealDoNotUse(*m_facts, value) &&
               (m_subject == Subject::Presence || passesNumber(Number::ofReal(value)));
    }
    const uint64_t value = integerOf(field, record, index);
    if ((!isWhole && TQX_isDoNotUse(*m_facts, value)) || (m_isTime && value == noContinuousTime))
        return false;
    if (m_subject == Subject::Name) {
        return (std::find(m_named.begin(), m_named.end(), value) != m_named.end()) ==
               (m_comparison != Comparison::NotEqual);
    }
    return m_subject == Subject::Presence ||
           passesNumber(TQX_isSigned(field) ? Number::ofSigned(static_cast<int64_t>(value))
                                            : Number::ofUnsigned(value));
}

bool FieldTest::passesNumber(const Number& value) const
{
    if (value.isNaN())
        return false;
    return holds(m_comparison, m_scale ? Number::ofReal(m_scale->apply(value.toDouble()))
                                             .compare(Number::ofReal(m_number.toDouble()))
                                       : value.compare(m_number));
}

} // namespace tqx
