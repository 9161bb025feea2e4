#include "read/Editions.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>

namespace korcg::generator
{

namespace
{

class EditionFilter
{
public:
    EditionFilter(Format& format, Errors& errors) : m_format(format), m_errors(errors) {}

    void run(std::vector<TypeDraft>& drafts, int edition)
    {
        for (TypeDraft& type : drafts) {
            for (FieldDraft& field : type.fields)
                setEdition(field, type.type.edition);
        }
        findLatest(drafts);
        m_format.edition = edition == 0 ? m_format.latestEdition : edition;
        if (m_format.edition > m_format.latestEdition) {
            m_errors.add({"--edition", 0}, fmt::format("there is no edition {}, the latest is {}",
                                                       edition, m_format.latestEdition));
        }
        setRegistration(drafts);
        dropLater(drafts, [](const TypeDraft& type) { return type.type.edition; });
        for (TypeDraft& type : drafts) {
            dropLater(type.fields, [](const FieldDraft& each) { return each.field.edition; });
            // An offset in the description is that in the edition of the field.
            for (FieldDraft& field : type.fields) {
                if (field.field.edition < m_format.edition)
                    field.field.expectedOffset.reset();
            }
            for (FieldDraft& field : type.fields)
                dropLater(field.bits, [](const FieldDraft& each) { return each.field.edition; });
        }
        for (auto& table : m_format.symbols)
            dropLater(table.second.values, [](const SymbolicValue& each) { return each.edition; });
    }

private:
    void setEdition(FieldDraft& draft, int around)
    {
        draft.field.edition = draft.edition.value_or(around);
        if (draft.field.edition < around) {
            m_errors.add(draft.field.where,
                         fmt::format("{} is of edition {}, but what holds it of edition {}",
                                     draft.field.name, draft.field.edition, around));
        }
        for (FieldDraft& bits : draft.bits)
            setEdition(bits, draft.field.edition);
    }

    void findLatest(const std::vector<TypeDraft>& drafts)
    {
        int latest = 1;
        const auto count = [&latest](int edition) { latest = std::max(latest, edition); };
        for (const TypeDraft& type : drafts) {
            count(type.type.edition);
            for (const FieldDraft& field : type.fields) {
                count(field.field.edition);
                for (const FieldDraft& bits : field.bits)
                    count(bits.field.edition);
            }
        }
        for (const auto& table : m_format.symbols) {
            for (const SymbolicValue& value : table.second.values)
                count(value.edition);
        }
        m_format.latestEdition = latest;
    }

    /// The list has the names of all editions; a name that was left out on purpose is not an error,
    /// and those of an earlier edition keep their places.
    void setRegistration(const std::vector<TypeDraft>& drafts)
    {
        std::map<std::string, int> editions;
        for (const TypeDraft& type : drafts)
            editions.emplace(type.type.name, type.type.edition);
        int edition = 1;
        for (RegistrationEntry& entry : m_format.registration) {
            const auto found = editions.find(entry.name);
            if (found == editions.end())
                continue;
            entry.edition = found->second;
            if (entry.edition < edition) {
                m_errors.add(entry.where, fmt::format("{} of edition {} is registered after a type "
                                                      "of edition {}",
                                                      entry.name, entry.edition, edition));
            }
            edition = std::max(edition, entry.edition);
        }
    }

    template<typename Item, typename EditionOf>
    void dropLater(std::vector<Item>& items, EditionOf editionOf) const
    {
        items.erase(
            std::remove_if(items.begin(), items.end(),
                           [&](const Item& item) { return editionOf(item) > m_format.edition; }),
            items.end());
    }

    Format& m_format;
    Errors& m_errors;
};

} // namespace

void applyEdition(std::vector<TypeDraft>& drafts, Format& format, int edition, Ledger& ledger,
                  Errors& errors)
{
    EditionFilter(format, errors).run(drafts, edition);
    int last = format.first.types;
    if (last == 0) {
        for (const TypeDraft& draft : drafts)
            last = std::max(last, draft.type.record);
    }
    format.lastFirstRecord = last;
    ledger.restart(format.edition);
    ledger.startAt(Ledger::Type, last + 1);
    for (int each = 2; each <= format.edition; ++each) {
        for (TypeDraft& draft : drafts) {
            if (draft.type.edition == each && !draft.type.name.empty()) {
                draft.type.record =
                    ledger.number(Ledger::Type, each, draft.type.name, draft.type.where, errors);
            }
        }
    }
}

} // namespace korcg::generator
