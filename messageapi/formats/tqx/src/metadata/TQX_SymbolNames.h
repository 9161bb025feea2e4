#pragma once

#include <QString>

#include <cstdint>
#include <vector>

/// A named value of an integer field.
struct TQX_Symbol {
    int64_t value;
    const char* name; ///< UTF-8
};

/// The named values of one symbol table. The texts are built once, so that the many fields that
/// carry the table share them.
class TQX_SymbolNames
{
public:
    /// `symbols` must outlive the object.
    TQX_SymbolNames(const TQX_Symbol* symbols, unsigned count);
    template<unsigned Count>
    explicit TQX_SymbolNames(const TQX_Symbol (&symbols)[Count]) : TQX_SymbolNames(symbols, Count)
    {
    }

    unsigned size() const { return static_cast<unsigned>(m_names.size()); }
    int64_t value(unsigned index) const { return m_symbols[index].value; }
    const QString& name(unsigned index) const { return m_names[index]; }

private:
    const TQX_Symbol* m_symbols;
    std::vector<QString> m_names;
};
