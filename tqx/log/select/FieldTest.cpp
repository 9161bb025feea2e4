#include "tqx/log/select/FieldTest.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/PrintableText.h"

#include "FieldInfo.h"
#include "Message.h"
#include "TQX_FieldInfo.h"

#include <algorithm>
#include <cmath>

namespace tqx
{

namespace
{

template<typename Value>
bool compares(const Value& value, Comparison comparison, const Value& wanted)
{
    switch (comparison) {
    case Comparison::Equal:
        return value == wanted;
    case Comparison::NotEqual:
        return value != wanted;
    case Comparison::Less:
        return value < wanted;
    case Comparison::LessOrEqual:
        return value <= wanted;
    case Comparison::Greater:
        return value > wanted;
    default:
        return value >= wanted;
    }
}

std::string withoutTrailingBlanks(std::string text)
{
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

std::optional<FieldTest> FieldTest::make(const FieldPath& path, const ExpressionTerm& term,
                                         std::string& why)
{
    FieldTest test(path, term.comparison);
    test.isTime = isContinuousTime(static_cast<const TQX_FieldInfo*>(path.field)->layout());
    const FieldType& type = path.field->getType();
    if (term.comparison == Comparison::Has)
        return test;
    std::string problem;
    if (type.getKind() == FieldKind::SubMessage)
        problem = "holds sub-blocks; compare a field inside, or ask whether it is there with has";
    else
        problem = term.isName ? test.prepareName(term.value.text) : test.prepareNumber(term.number);
    if (problem.empty())
        return test;
    why = path.field->getName().toStdString() + ' ' + problem;
    return std::nullopt;
}

std::string FieldTest::prepareName(const std::string& name)
{
    if (comparison != Comparison::Equal && comparison != Comparison::NotEqual)
        return "can be compared with a name or text by == and != only";
    const FieldInfo& info = *path.field;
    if (info.getType().getKind() == FieldKind::Ch) {
        subject = Subject::Text;
        text = withoutTrailingBlanks(name);
        return {};
    }
    subject = Subject::Name;
    std::vector<std::string> names;
    for (const FieldInfo::SymbolicValue& symbol : info.getSymbolicValues()) {
        if (info.isDoNotUse(symbol.value))
            continue;
        names.push_back(symbol.name.toStdString());
        if (equalNames(names.back(), name))
            named.push_back(symbol.value);
    }
    if (!named.empty())
        return {};
    if (names.empty())
        return "has no names for its values; compare it with a number";
    const std::string meant = nearest(name, {names.begin(), names.end()});
    return "has no value named '" + shortened(name) + '\'' +
           (meant.empty() ? "" : ", did you mean '" + meant + "'?");
}

std::string FieldTest::prepareNumber(const FieldValue& value)
{
    const FieldInfo& info = *path.field;
    if (info.getType().getKind() == FieldKind::Ch)
        return "is a text; compare it with one in quotes";
    subject = Subject::Number;
    number = value;
    if (info.hasScaleFactor())
        scale.emplace(info.getScaleFactor());
    // A number that a float shows as 0.1 is meant to equal 0.1.
    else if (info.getType().getKind() == FieldKind::F32)
        number = FieldValue::f32(static_cast<float>(value.toDouble()));
    return {};
}

bool FieldTest::passesBelow(const Message& message, size_t depth) const
{
    if (depth == path.through.size())
        return passesHere(message);
    const FieldInfo& info = *path.through[depth];
    const unsigned count = info.getNumberOfValues(&message);
    for (unsigned i = 0; i < count; ++i)
        if (passesBelow(*info.getValueUnchecked(&message, i).getSubMessage(), depth + 1))
            return true;
    return false;
}

bool FieldTest::passesHere(const Message& message) const
{
    const FieldInfo& info = *path.field;
    if (subject == Subject::Text)
        return passesText(message);
    const unsigned count = info.getNumberOfValues(&message);
    for (unsigned i = 0; i < count; ++i) {
        const FieldValue value = info.getValueUnchecked(&message, i);
        const bool isUnset = isTime && value == FieldValue::u(noContinuousTime, 32);
        if (!isUnset && !info.isDoNotUse(value) && passesValue(value))
            return true;
    }
    return false;
}

bool FieldTest::passesText(const Message& message) const
{
    if (!path.field->hasValue(&message))
        return false;
    const std::string value = path.field->getValueString(&message).toStdString();
    return compares(withoutTrailingBlanks(value), comparison, text);
}

bool FieldTest::passesValue(const FieldValue& value) const
{
    if (subject == Subject::Number)
        return passesNumber(value);
    if (subject == Subject::Name)
        return (std::find(named.begin(), named.end(), value) != named.end()) ==
               (comparison == Comparison::Equal);
    return true;
}

bool FieldTest::passesNumber(const FieldValue& value) const
{
    if (value.isFloat() && std::isnan(value.getF64()))
        return false;
    if (scale)
        return compares(scale->apply(value.toDouble()), comparison, number.toDouble());
    return compares(value, comparison, number);
}

} // namespace tqx
