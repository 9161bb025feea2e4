#include "read/Resolve.h"

#include "model/Names.h"
#include "model/Values.h"
#include "read/Header.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace korcg::generator
{

namespace
{

/// Turns one draft into its record type.
class TypeResolver
{
public:
    /// `mainLengths` are the names of main-block fields that sub-blocks take entry lengths from.
    TypeResolver(TypeDraft& draft, const std::set<std::string>& mainLengths, Errors& errors)
        : m_draft(draft), m_type(draft.type), m_mainLengths(mainLengths), m_errors(errors)
    {
    }

    void run()
    {
        flatten();
        for (std::size_t row = 0; row < m_type.fields.size(); ++row) {
            if (m_drafts[row])
                resolveNames(m_type.fields[row], *m_drafts[row]);
        }
        for (std::size_t row = 0; row < m_type.fields.size(); ++row) {
            if (m_drafts[row] && m_drafts[row]->takes)
                takeBytes(static_cast<int>(row), m_drafts[row]->takes);
        }
        for (Field& field : m_type.fields)
            inherit(field);
        for (std::size_t row = 0; row < m_type.fields.size(); ++row)
            applyDefaults(static_cast<int>(row));
    }

    const FieldDraft* draftOf(std::size_t row) const { return m_drafts[row]; }

private:
    void append(const FieldDraft& draft)
    {
        m_type.fields.push_back(draft.field);
        m_drafts.push_back(&draft);
    }

    void flatten()
    {
        if (m_type.isMain())
            m_type.fields = headerFields(m_type.where);
        m_drafts.assign(m_type.fields.size(), nullptr);
        for (const FieldDraft& draft : m_draft.fields) {
            const int parent = static_cast<int>(m_type.fields.size());
            append(draft);
            for (const FieldDraft& bits : draft.bits) {
                append(bits);
                m_type.fields.back().parent = parent;
            }
        }
        for (std::size_t row = 0; row < m_type.fields.size(); ++row)
            m_rows.emplace(identifier(m_type.fields[row].name), static_cast<int>(row));
    }

    int rowOf(const Mention& mention)
    {
        if (!mention)
            return -1;
        const auto found = m_rows.find(identifier(mention.name));
        if (found != m_rows.end())
            return found->second;
        m_errors.add(mention.where, fmt::format("{} has no field '{}'", m_type.name, mention.name));
        m_type.broken = true;
        return -1;
    }

    void resolveNames(Field& field, const FieldDraft& draft)
    {
        field.count = rowOf(draft.count);
        field.lengthInMain = draft.sizeInMain;
        if (!draft.sizeInMain)
            field.length = rowOf(draft.size);
        field.selector = rowOf(draft.selector);
        for (const Mention& summed : draft.summed)
            sumUp(field, summed);
        for (std::string& input : field.inputs)
            input = identifier(input);
        if (field.kind == FieldKind::Derived)
            field.after = draft.after ? rowOf(draft.after) : lastInput(field);
    }

    void sumUp(Field& field, const Mention& mention)
    {
        const int row = rowOf(mention);
        if (row < 0)
            return;
        const Field& part = m_type.fields[static_cast<std::size_t>(row)];
        if (part.parent != field.parent || part.summary != Summary::None ||
            part.kind != FieldKind::Bits || isSigned(part.type)) {
            m_errors.add(
                mention.where,
                fmt::format("{}.{} cannot summarise {}: it is not a stored, unsigned part of the "
                            "same word",
                            m_type.name, field.name, part.name));
            m_type.broken = true;
            return;
        }
        field.summed |= uint32_t{1} << static_cast<unsigned>(row - field.parent - 1);
    }

    /// Shortens a reserved array by the field beside it that takes its place.
    void takeBytes(int row, const Mention& taken)
    {
        const int reserved = rowOf(taken);
        if (reserved < 0)
            return;
        Field& field = m_type.fields[static_cast<std::size_t>(row)];
        Field& array = m_type.fields[static_cast<std::size_t>(reserved)];
        const auto wrong = [&](const std::string& text) {
            m_errors.add(taken.where, fmt::format("{}.{} cannot take bytes of {}: {}", m_type.name,
                                                  field.name, taken.name, text));
            m_type.broken = true;
        };
        if (array.kind != FieldKind::Array || array.type != Scalar::U8 ||
            array.name.rfind("Reserved", 0) != 0 || array.edition >= field.edition)
            return wrong("it is not a reserved array of bytes of an earlier edition");
        for (int between = std::min(row, reserved) + 1; between < std::max(row, reserved);
             ++between) {
            if (const Field& other = m_type.fields[static_cast<std::size_t>(between)];
                other.onWire() && other.takes != field.takes)
                return wrong(fmt::format("{} is between them", other.name));
        }
        if (!field.hasCode() || field.isCounted())
            return wrong("its own size is not constant");
        array.elements -= bitsOf(field.type) / 8 * field.elements;
        if (array.elements <= 0)
            return wrong("nothing of it would be left");
        field.presence = array.presence;
        field.presenceValue = array.presenceValue;
        field.selector = array.selector;
        field.alwaysSent = array.alwaysSent;
    }

    /// The wire field after which all inputs of this record are known.
    int lastInput(const Field& field)
    {
        int last = -1;
        for (const std::string& input : field.inputs) {
            const auto found = m_rows.find(input);
            if (found == m_rows.end())
                continue;
            const Field& source = m_type.fields[static_cast<std::size_t>(found->second)];
            const int row = source.parent >= 0                  ? source.parent
                            : source.kind == FieldKind::Derived ? source.after
                                                                : found->second;
            last = std::max(last, row);
        }
        if (last < 0) {
            m_errors.add(field.where, fmt::format("derived field {} needs 'after'", field.name));
            m_type.broken = true;
        }
        return last;
    }

    /// Sub-fields are there when their word is, derived fields when what they derive from is.
    void inherit(Field& field)
    {
        const int source = field.kind == FieldKind::Bits ? field.parent : field.after;
        if (source < 0 || field.isHeader)
            return;
        const Field& from = m_type.fields[static_cast<std::size_t>(source)];
        if (field.presence == Presence::Always) {
            field.presence = from.presence;
            field.presenceValue = from.presenceValue;
            field.selector = from.selector;
            field.alwaysSent = from.alwaysSent;
        }
        if (field.kind == FieldKind::Bits) {
            field.elements = from.elements;
            field.count = from.count;
            field.countsBytes = from.countsBytes;
        }
    }

    bool isStructural(int row) const
    {
        const Field& self = m_type.fields[static_cast<std::size_t>(row)];
        if (m_type.isMain() && m_mainLengths.count(identifier(self.name)) != 0)
            return true;
        return std::any_of(m_type.fields.begin(), m_type.fields.end(), [row](const Field& field) {
            return (field.kind == FieldKind::Blocks && field.count == row) ||
                   (field.length == row && !field.lengthInMain);
        });
    }

    void applyDefaults(int row)
    {
        Field& field = m_type.fields[static_cast<std::size_t>(row)];
        const FieldDraft* const draft = m_drafts[static_cast<std::size_t>(row)];
        const bool holdsRecords =
            field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded;
        if (holdsRecords) {
            field.role = Role::Unset;
        } else if (draft && !draft->roleGiven) {
            field.role = field.isPadding || isStructural(row)   ? Role::Structure
                         : field.name.rfind("Reserved", 0) == 0 ? Role::Reserved
                                                                : Role::Data;
        }
        if (field.kind == FieldKind::Derived && draft && !draft->virtualGiven)
            field.isVirtual = true;
        field.isAddition = field.edition > m_type.edition && field.takes.empty() && field.onWire();
        field.isOptional = field.presence != Presence::Always;
        const Field& shape =
            field.parent >= 0 ? m_type.fields[static_cast<std::size_t>(field.parent)] : field;
        field.isRepeated = shape.isArray() || shape.kind == FieldKind::Blocks;
        field.doNotUseNamed = field.doNotUse && field.doNotUseNamed;
    }

    TypeDraft& m_draft;
    RecordType& m_type;
    const std::set<std::string>& m_mainLengths;
    Errors& m_errors;
    std::vector<const FieldDraft*> m_drafts; ///< per row, null for header fields
    std::map<std::string, int> m_rows;
};

/// A sub-block's mention of a field of the main block around it.
struct MainMention {
    std::string type;
    std::size_t row;
    Mention field;
};

/// Main blocks that hold the type. Sub-blocks that hold others are never nested deeper.
std::vector<const RecordType*> mainsAround(const Format& format, const std::string& name)
{
    std::vector<const RecordType*> mains;
    for (const RecordType& owner : format.types) {
        if (owner.isMain() &&
            std::any_of(owner.fields.begin(), owner.fields.end(),
                        [&name](const Field& field) { return field.subType == name; }))
            mains.push_back(&owner);
    }
    return mains;
}

/// The row of the field in every main block around the type; all of them must agree on it.
int rowInMains(const Format& format, const MainMention& mention, Errors& errors)
{
    const std::vector<const RecordType*> mains = mainsAround(format, mention.type);
    int row = -1;
    for (const RecordType* main : mains) {
        const auto found =
            std::find_if(main->fields.begin(), main->fields.end(), [&mention](const Field& field) {
                return identifier(field.name) == identifier(mention.field.name);
            });
        if (found == main->fields.end()) {
            errors.add(mention.field.where,
                       fmt::format("{} has no field '{}'", main->name, mention.field.name));
            continue;
        }
        const int here = static_cast<int>(found - main->fields.begin());
        if (row >= 0 && here != row) {
            errors.add(mention.field.where,
                       fmt::format("'{}' is in different places of {} and {}", mention.field.name,
                                   mains.front()->name, main->name));
        }
        row = here;
    }
    return row;
}

} // namespace

void resolve(std::vector<TypeDraft> drafts, Format& format, Errors& errors)
{
    std::set<std::string> mainLengths;
    for (const TypeDraft& draft : drafts) {
        for (const FieldDraft& field : draft.fields) {
            if (field.sizeInMain)
                mainLengths.insert(identifier(field.size.name));
        }
    }

    std::vector<MainMention> mentions;
    for (TypeDraft& draft : drafts) {
        TypeResolver resolver(draft, mainLengths, errors);
        resolver.run();
        RecordType& type = draft.type;
        for (std::size_t row = 0; row < type.fields.size(); ++row) {
            if (type.fields[row].lengthInMain)
                mentions.push_back({type.name, row, resolver.draftOf(row)->size});
        }
        format.types.push_back(type);
    }
    std::stable_sort(format.types.begin(), format.types.end(),
                     [](const RecordType& a, const RecordType& b) { return a.record < b.record; });

    for (const MainMention& mention : mentions) {
        const int row = rowInMains(format, mention, errors);
        const auto type =
            std::find_if(format.types.begin(), format.types.end(),
                         [&mention](const RecordType& each) { return each.name == mention.type; });
        if (mention.row < type->fields.size())
            type->fields[mention.row].length = row;
    }
}

} // namespace korcg::generator
