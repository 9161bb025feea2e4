#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx/log/select/FieldPath.h"
#include "tqx/log/value/Scale.h"
#include "tqx_log_export.h"

#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// One term of an expression, prepared for one field. Immutable: any number of threads may use the
/// same one.
class TQX_LOG_API FieldTest
{
public:
    /// Nothing, with the reason in `why`, when the field has no such comparison.
    static std::optional<FieldTest> make(const FieldPath& path, const ExpressionTerm& term,
                                         std::string& why);

    /// Whether at least one available value of the field passes, in a record of the type that the
    /// path begins in.
    bool passes(const void* record) const;

private:
    enum class Subject { Presence, Number, Name, Text };

    FieldTest(const FieldPath& fieldPath, Comparison wanted);

    std::string prepareName(const std::string& name);
    std::string prepareNumber(const Number& value);
    bool passesHere(const void* record) const;
    bool passesText(const void* record) const;
    bool passesElement(const void* record, uint32_t index, bool isWhole) const;
    bool passesNumber(const Number& value) const;

    FieldPath m_path;
    const Kor::MessageApi::TQX_FieldFacts* m_facts;
    Comparison m_comparison;
    Subject m_subject = Subject::Presence;
    bool m_isTime = false; ///< see isContinuousTime()
    std::optional<Scale> m_scale;
    Number m_number;
    std::vector<uint64_t> m_named; ///< the values that have the wanted name, sign-extended
    std::string m_text;
};

} // namespace tqx
