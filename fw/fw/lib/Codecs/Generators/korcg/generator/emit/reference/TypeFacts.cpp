#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <cctype>
#include <set>

namespace korcg::generator::reference
{

namespace
{

std::string nameOf(const RecordType& type, int row)
{
    return escaped(type.fields[static_cast<std::size_t>(row)].name);
}

bool isPresent(const Field& field, int revision)
{
    switch (field.presence) {
    case Presence::SinceRevision:
        return field.alwaysSent || revision >= field.presenceValue;
    case Presence::OnlyRevision:
        return revision == field.presenceValue;
    case Presence::Always:
    case Presence::Selected:
        break;
    }
    return true;
}

/// The main block that a type is, or is in.
const RecordType& mainOf(const Format& format, const RecordType& type)
{
    const RecordType* holder = &type;
    while (!holder->isMain() && !holder->owners.empty())
        holder = &format.types[static_cast<std::size_t>(holder->owners.front())];
    return *holder;
}

/// The bytes of a field whose number varies, as a product or a word.
std::string varyingBytes(const Format& format, const RecordType& type, const Field& field)
{
    const std::string count =
        field.count >= 0 ? nameOf(type, field.count) : fmt::format("{}", field.elements);
    if (field.kind == FieldKind::Blocks) {
        const std::string each =
            field.length < 0
                ? "the size of a " + escaped(field.subType)
                : nameOf(field.lengthInMain ? mainOf(format, type) : type, field.length);
        return fmt::format("{}&thinsp;&times;&thinsp;{}", count, each);
    }
    const int each = field.countsBytes ? 1 : bytesOf(field.type);
    return each == 1 ? count : fmt::format("{}&thinsp;&times;&thinsp;{}", count, each);
}

struct Size {
    int fixed = 0;
    std::string varying;
    std::set<std::string> selectors; ///< names of the fields that select others
};

Size sizeIn(const Format& format, const RecordType& type, int revision)
{
    Size size;
    for (const Field& field : type.fields) {
        if (!field.onWire() || !isPresent(field, revision))
            continue;
        if (field.presence == Presence::Selected) {
            size.selectors.insert(nameOf(type, field.selector));
        } else if (field.isCounted() || field.kind == FieldKind::Blocks) {
            size.varying += " + " + varyingBytes(format, type, field);
        } else if (field.kind == FieldKind::Embedded) {
            if (const RecordType* part = format.find(field.subType)) {
                const Size inner = sizeIn(format, *part, revision);
                size.fixed += inner.fixed;
                size.varying += inner.varying;
                size.selectors.insert(inner.selectors.begin(), inner.selectors.end());
            }
        } else {
            size.fixed += field.elements * bytesOf(field.type);
        }
    }
    return size;
}

/// The name less the number of its generation: "PVTGeodetic" of PVTGeodetic2.
std::string stemOf(const std::string& name)
{
    std::size_t end = name.size();
    while (end > 1 && std::isdigit(static_cast<unsigned char>(name[end - 1])) != 0)
        --end;
    return name.substr(0, end);
}

bool isUpper(char c)
{
    return std::isupper(static_cast<unsigned char>(c)) != 0;
}

/// The first word of a name in capitals and small letters: "PVT", "Meas", "GPS".
std::string firstWord(const std::string& name)
{
    std::size_t end = 1;
    while (end < name.size() && isUpper(name[end]))
        ++end;
    const bool isAcronym = end > 1;
    if (isAcronym && end < name.size() && std::isalpha(static_cast<unsigned char>(name[end])) != 0)
        --end; // the last capital begins the next word
    while (!isAcronym && end < name.size() && std::islower(static_cast<unsigned char>(name[end])))
        ++end;
    return name.substr(0, end);
}

/// Links to the other main blocks that `isRelative` holds for.
template<typename Condition>
std::string relatives(const Format& format, const RecordType& type, Condition isRelative)
{
    std::string links;
    for (const RecordType& other : format.types) {
        if (&other != &type && other.isMain() && !other.broken && isRelative(other))
            links += (links.empty() ? "" : ", ") + linkTo(other.name);
    }
    return links;
}

std::string revisionsText(const RecordType& type)
{
    return type.highestRevision == 0 ? "0" : fmt::format("0 to {}", type.highestRevision);
}

std::string_view timestampText(char kind)
{
    switch (kind) {
    case 'S':
        return "of transmission";
    case 'E':
        return "of the event";
    default:
        return "of the receiver";
    }
}

} // namespace

std::string sizeText(const Format& format, const RecordType& type)
{
    std::string text;
    std::string last;
    for (int revision = 0; revision <= type.highestRevision; ++revision) {
        const Size size = sizeIn(format, type, revision);
        std::string words = fmt::format("{} bytes{}", size.fixed, size.varying);
        if (!size.selectors.empty()) {
            words +=
                fmt::format(" + the fields that depend on {}", fmt::join(size.selectors, ", "));
        }
        if (words == last)
            continue;
        if (revision > 0)
            text += fmt::format("; from revision {}: ", revision);
        text += words;
        last = words;
    }
    return text;
}

std::string typeFacts(const Format& format, const RecordType& type)
{
    std::string text = "<dl>\n";
    const auto add = [&text](std::string_view name, const std::string& value) {
        if (!value.empty())
            text += fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, value);
    };
    add("Block number", type.isMain() ? fmt::format("{}", type.number) : "");
    // Where there is no text, the summary says it.
    add("Part of", type.isMain() || type.text.empty() ? "" : ownerLinks(format, type));
    add("Size", sizeText(format, type));
    add("Revisions", revisionsText(type));
    if (type.edition > 1)
        add("Edition", fmt::format("{}", type.edition));
    if (type.isMain()) {
        add("Flexible rate", type.flexrate ? "yes" : "no");
        add("On change", type.esoc ? "yes" : "");
        add("Time stamp", std::string(timestampText(type.timestamp)));
        const auto isGeneration = [&type](const RecordType& other) {
            return stemOf(other.name) == stemOf(type.name);
        };
        add("Other generations", relatives(format, type, isGeneration));
        add("See also", relatives(format, type, [&](const RecordType& other) {
                return !isGeneration(other) && (familyOf(other) == familyOf(type) ||
                                                firstWord(other.name) == firstWord(type.name));
            }));
    }
    const std::string family = escaped(familyOf(type));
    add("Family", fmt::format("<a href=\"families.html#{0}\">{0}</a>", family));
    add("Record", fmt::format("<code>TQX_{}_s</code>, type {}", escaped(type.name), type.record));
    add("Message class", type.hasMessage
                             ? fmt::format("<code>TQX_{}_Message</code>", escaped(type.name))
                             : "none, decoded only");
    add("Result codes", fmt::format("{} to {}", type.fields.front().code,
                                    type.isMain() ? type.crcChecksum : type.internal));
    return text + "</dl>\n";
}

} // namespace korcg::generator::reference
