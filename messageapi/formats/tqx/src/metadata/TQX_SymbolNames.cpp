#include "TQX_SymbolNames.h"

TQX_SymbolNames::TQX_SymbolNames(const TQX_Symbol* symbols, unsigned count) : m_symbols(symbols)
{
    m_names.reserve(count);
    for (unsigned i = 0; i < count; ++i)
        m_names.push_back(QString::fromUtf8(symbols[i].name));
}
