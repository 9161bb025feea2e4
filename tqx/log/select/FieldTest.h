#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx/log/select/FieldPath.h"
#include "tqx/log/value/Scale.h"

#include "FieldValue.h"

#include <optional>
#include <string>
#include <vector>

class FieldInfo;
class Message;

namespace tqx
{

/// One term of an expression, made ready for one field.
class FieldTest
{
public:
    /// Nothing, and `why` filled, when the field has no such comparison.
    static std::optional<FieldTest> make(const FieldPath& path, const ExpressionTerm& term,
                                         std::string& why);

    /// Whether at least one value that the message has of the field passes.
    bool passes(const Message& message) const { return passesBelow(message, 0); }

private:
    enum class Subject { Presence, Number, Name, Text };

    explicit FieldTest(const FieldPath& fieldPath, Comparison wanted)
        : path(fieldPath), comparison(wanted)
    {
    }

    std::string prepareName(const std::string& name);
    std::string prepareNumber(const FieldValue& value);
    bool passesBelow(const Message& message, size_t depth) const;
    bool passesHere(const Message& message) const;
    bool passesText(const Message& message) const;
    bool passesValue(const FieldValue& value) const;
    bool passesNumber(const FieldValue& value) const;

    FieldPath path;
    Comparison comparison;
    Subject subject = Subject::Presence;
    bool isTime = false; ///< see isContinuousTime()
    std::optional<Scale> scale;
    FieldValue number;
    std::vector<FieldValue> named; ///< the values that have the wanted name
    std::string text;
};

} // namespace tqx
