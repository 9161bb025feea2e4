#include "model/CheckParts.h"
#include "model/Limits.h"
#include "model/Numbering.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <map>

namespace korcg::generator
{

namespace
{

class LayoutCheck
{
public:
    LayoutCheck(const RecordType& type, Errors& errors) : m_type(type), m_errors(errors) {}

    void run()
    {
        for (std::size_t i = 0; i < m_type.fields.size(); ++i) {
            const Field& field = m_type.fields[i];
            if (!field.onWire())
                continue;
            const int row = static_cast<int>(i);
            checkReference(field, row, field.count, "count");
            if (!field.lengthInMain)
                checkReference(field, row, field.length, "size");
            checkReference(field, row, field.selector, "selector");
            checkCapacity(field);
            checkSelection(field);
            checkOffset(field);
            checkPadding(field);
        }
        checkRevisions();
        checkSize();
    }

private:
    template<typename... Args>
    void error(const Field& field, fmt::format_string<Args...> text, Args&&... args)
    {
        m_errors.add(field.where, fmt::format("{} {}", qualified(m_type, field),
                                              fmt::format(text, std::forward<Args>(args)...)));
    }

    const Field& at(int row) const { return m_type.fields[static_cast<std::size_t>(row)]; }

    /// A field that decides about another must be a single number that has been read before.
    void checkReference(const Field& field, int row, int target, std::string_view what)
    {
        // Where two types have one name, which is an error of its own, it is a row of the other.
        if (target < 0 || target >= static_cast<int>(m_type.fields.size()))
            return;
        const Field& other = at(target);
        if (other.isRepeated || !other.subType.empty() || !isInteger(other.type)) {
            error(field, "cannot use {} as {}: it is not a single whole number", other.name, what);
        } else if (target >= row) {
            error(field, "precedes its {} {}", what, other.name);
        }
    }

    void checkCapacity(const Field& field)
    {
        if (!field.isCounted() || field.count < 0 || !isInteger(at(field.count).type))
            return;
        const uint64_t most = maximumOf(at(field.count));
        const auto needed = static_cast<uint64_t>(field.elements) *
                            static_cast<uint64_t>(field.countsBytes ? bitsOf(field.type) / 8 : 1);
        if (most < needed) {
            error(field, "cannot be filled: its count {} goes up to {} of {}", at(field.count).name,
                  most, needed);
        }
    }

    void checkSelection(const Field& field)
    {
        if (field.selector < 0)
            return;
        const Field& selector = at(field.selector);
        if (isInteger(selector.type) && !fits(selector, int64_t{field.presenceValue})) {
            error(field, "is selected by {} = {}, which is not a value of {}", selector.name,
                  field.presenceValue, valueTypeName(selector));
        }
    }

    void checkOffset(const Field& field)
    {
        if (!field.expectedOffset || *field.expectedOffset == field.wireOffset)
            return;
        if (field.wireOffset < 0) {
            error(field, "has no constant offset, expected {}", *field.expectedOffset);
        } else {
            error(field, "has offset {}, expected {}", field.wireOffset, *field.expectedOffset);
        }
    }

    void checkPadding(const Field& field)
    {
        if (field.isPadding && (field.type != Scalar::U8 || field.isCounted()))
            error(field, "is padding and must be bytes of a fixed number");
        if (field.isPadding && field.presence == Presence::Always &&
            std::isdigit(static_cast<unsigned char>(field.name.back())))
            error(field, "is named after a revision, but has no 'only'");
        if (field.presence == Presence::OnlyRevision &&
            field.name != fmt::format("_padding{}", field.presenceValue))
            error(field, "must be named _padding{} after its revision", field.presenceValue);
    }

    /// Newer fields follow older ones, so that old readers and encoders of every field agree on the
    /// layout; padding of single revisions ends it, until a later edition adds a revision. What
    /// follows the stated length of an entry is found by that.
    void checkRevisions()
    {
        int revision = 0;
        int padded = -1; // revision of the padding
        for (const Field& field : m_type.fields) {
            if (!field.onWire())
                continue;
            if (field.presence == Presence::OnlyRevision) {
                padded = std::max(padded, field.presenceValue);
                continue;
            }
            if (padded >= 0 && (!field.isAddition || field.presenceValue <= padded))
                error(field, "must not follow padding of a single revision");
            const bool isNewer = field.presence == Presence::SinceRevision && !field.alwaysSent;
            const int since = isNewer ? field.presenceValue : 0;
            if (since < revision && !followsEntry(field)) {
                error(field, "{} must not follow fields of revision {}",
                      since == 0 ? "is in every revision and"
                                 : fmt::format("of revision {}", since),
                      revision);
            }
            if (!followsEntry(field))
                revision = std::max(revision, since);
        }
    }

    bool followsEntry(const Field& field) const
    {
        return !m_type.isMain() && (field.kind == FieldKind::Blocks ||
                                    (field.kind == FieldKind::Embedded && field.length >= 0));
    }

    /// Of alternatives that one field selects the largest counts.
    void checkSize()
    {
        int64_t bytes = 0;
        int selector = -1;
        std::map<int, int64_t> alternatives;
        const auto close = [&] {
            int64_t largest = 0;
            for (const auto& alternative : alternatives)
                largest = std::max(largest, alternative.second);
            bytes += largest;
            alternatives.clear();
        };
        bool holdsFields = false;
        for (const Field& field : m_type.fields) {
            if (!field.onWire())
                continue;
            holdsFields = true;
            if (field.selector != selector)
                close();
            selector = field.selector;
            (selector < 0 ? bytes : alternatives[field.presenceValue]) += wireSize(field);
        }
        close();
        if (bytes > largestBlock) {
            m_errors.add(m_type.where, fmt::format("{} takes up to {} bytes, more than {}",
                                                   m_type.name, bytes, largestBlock));
        }
        if (!holdsFields)
            m_errors.add(m_type.where, fmt::format("{} has no fields", m_type.name));
    }

    const RecordType& m_type;
    Errors& m_errors;
};

} // namespace

void checkLayout(const RecordType& type, Errors& errors)
{
    LayoutCheck(type, errors).run();
}

} // namespace korcg::generator
