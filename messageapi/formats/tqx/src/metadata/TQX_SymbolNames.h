#pragma once

#include "TQX_FieldFacts.h"
#include "tqx_export.h"

#include <QString>

#include <cstdint>
#include <vector>

/// The named values of one table. The texts are built once, so that the many fields that carry the
/// table share them.
class TQX_SymbolNames
{
public:
    /// The names of a field's values, built at the first call for any field that has the same.
    TQX_API static const TQX_SymbolNames& of(const Kor::MessageApi::TQX_FieldFacts& field);

    explicit TQX_SymbolNames(const Kor::MessageApi::TQX_NamedValues& values);

    unsigned size() const { return m_values.size(); }
    int64_t value(unsigned index) const { return m_values[index].value; }
    const QString& name(unsigned index) const { return m_names[index]; }

private:
    Kor::MessageApi::TQX_NamedValues m_values;
    std::vector<QString> m_names;
};
