#include "TQX_SymbolNames.h"

#include <atomic>
#include <memory>

using namespace Kor::MessageApi;

namespace
{

/// Owns the results; threads that build the same table at the same time use the first one.
class Tables
{
public:
    Tables() : m_tables(TQX_namedValueTables()) {}
    ~Tables()
    {
        for (const auto& table : m_tables)
            delete table.load(std::memory_order_acquire);
    }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    const TQX_SymbolNames& of(const TQX_FieldFacts& field)
    {
        std::atomic<const TQX_SymbolNames*>& table = m_tables[field.namedValues];
        if (const TQX_SymbolNames* known = table.load(std::memory_order_acquire))
            return *known;
        auto built = std::make_unique<const TQX_SymbolNames>(TQX_namedValues(field));
        const TQX_SymbolNames* first = nullptr;
        if (table.compare_exchange_strong(first, built.get(), std::memory_order_acq_rel))
            return *built.release();
        return *first;
    }

private:
    std::vector<std::atomic<const TQX_SymbolNames*>> m_tables;
};

} // namespace

TQX_SymbolNames::TQX_SymbolNames(const TQX_NamedValues& values) : m_values(values)
{
    m_names.reserve(values.size());
    for (const TQX_NamedValue& value : values) {
        m_names.push_back(
            QString::fromUtf8(value.name.data(), static_cast<int>(value.name.size())));
    }
}

const TQX_SymbolNames& TQX_SymbolNames::of(const TQX_FieldFacts& field)
{
    static Tables tables;
    return tables.of(field);
}
