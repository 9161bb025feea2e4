#include "model/CheckParts.h"
#include "model/Checks.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace korcg::generator
{

namespace
{

/// Holds what two editions say about one type against each other.
class GrowthCheck
{
public:
    GrowthCheck(const Format& earlier, const RecordType& before, const Format& later,
                const RecordType& after, Errors& errors)
        : m_earlier(earlier), m_before(before), m_later(later), m_after(after), m_errors(errors)
    {
    }

    void run()
    {
        const bool isSame =
            m_before.record == m_after.record && m_before.sizeUnderflow == m_after.sizeUnderflow &&
            m_before.internal == m_after.internal && m_before.crcChecksum == m_after.crcChecksum &&
            m_before.disabled == m_after.disabled &&
            m_before.registration == m_after.registration &&
            m_before.linksToMain == m_after.linksToMain;
        if (!isSame)
            error(m_after.where, fmt::format("{} gets other numbers", m_after.name));
        for (const Field& field : m_before.fields) {
            compare(
                field,
                m_after.fields[static_cast<std::size_t>(findRow(m_after, identifier(field.name)))]);
        }
        for (std::size_t row = 0; row < m_after.fields.size(); ++row) {
            if (const Field& field = m_after.fields[row];
                field.isAddition && field.edition == m_later.edition)
                checkAddition(field, static_cast<int>(row));
        }
    }

private:
    void error(const Location& where, const std::string& text)
    {
        m_errors.add(where, fmt::format("edition {}: {}", m_later.edition, text));
    }

    void compare(const Field& before, const Field& after)
    {
        const bool isShortened = after.elements < before.elements;
        const bool isSame =
            before.code == after.code && before.capacityCode == after.capacityCode &&
            before.role == after.role && before.presence == after.presence &&
            before.isOptional == after.isOptional && before.isRepeated == after.isRepeated &&
            (isShortened || before.wireOffset == after.wireOffset ||
             (followsEntry(after) && after.wireOffset < 0));
        if (!isSame) {
            error(after.where, fmt::format("{} gets another code or place than in edition {}",
                                           qualified(m_after, after), m_earlier.edition));
        }
    }

    bool followsEntry(const Field& field) const
    {
        return !m_after.isMain() && !field.subType.empty() &&
               (field.kind == FieldKind::Blocks || field.length >= 0);
    }

    /// Blocks of the revisions that exist already must stay as they are: an addition is there from
    /// a new revision on, after everything else.
    void checkAddition(const Field& field, int row)
    {
        const bool isRevised = (field.presence == Presence::SinceRevision && !field.alwaysSent) ||
                               (field.isPadding && field.presence == Presence::OnlyRevision);
        const int highest = highestRevision();
        if (!isRevised || field.presenceValue <= highest) {
            error(field.where, fmt::format("{} needs 'since' with a revision above {}",
                                           qualified(m_after, field), highest));
        }
        for (std::size_t i = static_cast<std::size_t>(row); i < m_after.fields.size(); ++i) {
            const Field& other = m_after.fields[i];
            if (other.onWire() && other.edition < field.edition && !followsEntry(other)) {
                error(field.where, fmt::format("{} is before {}, which is older",
                                               qualified(m_after, field), other.name));
            }
        }
        if (m_after.isMain())
            return;
        for (int i = 0; i < row; ++i) {
            if (const Field& other = m_after.fields[static_cast<std::size_t>(i)];
                other.kind == FieldKind::Blocks && field.kind != FieldKind::Blocks) {
                error(field.where,
                      fmt::format("{} is after {}, which follows the entry that is grown",
                                  qualified(m_after, field), other.name));
            }
        }
    }

    /// The revisions that are known of the main blocks around the type.
    int highestRevision() const
    {
        std::vector<const RecordType*> open = {&m_before};
        int highest = 0;
        while (!open.empty()) {
            const RecordType& type = *open.back();
            open.pop_back();
            highest = std::max(highest, type.highestRevision);
            for (const int owner : type.owners)
                open.push_back(&m_earlier.types[static_cast<std::size_t>(owner)]);
        }
        return highest;
    }

    const Format& m_earlier;
    const RecordType& m_before;
    const Format& m_later;
    const RecordType& m_after;
    Errors& m_errors;
};

} // namespace

void checkGrowth(const Format& earlier, const Format& later, Errors& errors)
{
    if (!errors.empty())
        return;
    for (const RecordType& type : earlier.types)
        GrowthCheck(earlier, type, later, *later.find(type.name), errors).run();
    const auto known = static_cast<std::ptrdiff_t>(earlier.codeNames.size());
    for (std::ptrdiff_t i = 0; i < known; ++i) {
        if (earlier.codeNames[static_cast<std::size_t>(i)] !=
            later.codeNames[static_cast<std::size_t>(i)]) {
            errors.add(later.first.where,
                       fmt::format("edition {}: code {} is no longer {}", later.edition, -1 - i,
                                   earlier.codeNames[static_cast<std::size_t>(i)]));
        }
    }
}

} // namespace korcg::generator
