#include "emit/codec/Parts.h"
#include "emit/codec/Shape.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator::codec
{

namespace
{

const Field& row(const RecordType& type, int index)
{
    return type.fields[static_cast<std::size_t>(index)];
}

std::string bitsOf(const std::string& bytes)
{
    return bytes == "0U" ? "0" : bytes + " * 8U";
}

std::string exactCall(const RecordType& type)
{
    return fmt::format("decodeExactly(layout_{}, context, buffer, size, offset, father, "
                       "explicitLength, record)",
                       type.name);
}

const RecordType& ownerOf(const Format& format, const RecordType& type)
{
    return format.types[static_cast<std::size_t>(type.owners.front())];
}

// The length of an entry as the block states it; 0 when it does not.
std::string lengthOf(const Format& format, const RecordType& type, const Field& field)
{
    if (field.length < 0)
        return "0U";
    return field.lengthInMain ? "main->" + identifier(row(ownerOf(format, type), field.length).name)
                              : "record->" + identifier(row(type, field.length).name);
}

// When the field is there; empty for always. Only main blocks have a revision of their own.
std::string condition(const RecordType& type, const Field& field)
{
    switch (field.presence) {
    case Presence::Selected:
        return fmt::format("record->{} == {}", identifier(row(type, field.selector).name),
                           field.presenceValue);
    case Presence::SinceRevision:
        return fmt::format("record->Revision >= {}", field.presenceValue);
    case Presence::OnlyRevision:
        return fmt::format("record->Revision == {}", field.presenceValue);
    default:
        return {};
    }
}

// The sub-block arrays before it are released before the exact decoder starts over.
std::string freeArraysBefore(const RecordType& type, const Field& field, std::string_view indent)
{
    std::string text;
    for (const Field& before : type.fields) {
        if (&before == &field)
            break;
        if (before.kind == FieldKind::Blocks)
            text += fmt::format("{}std::free(record->{});\n", indent, identifier(before.name));
    }
    return text;
}

bool isPlainSub(const RecordType& sub)
{
    return shapeOf(sub).isPlain();
}

// A sub-block type that ends in one array of plain entries with the length of the main block.
const Field* nestedArray(const Format& format, const RecordType& sub)
{
    const Shape shape = shapeOf(sub);
    const Field* nested = onlyBlocks(sub, shape);
    if (nested == nullptr || !nested->lengthInMain || shape.conditional ||
        !isPlainSub(*format.find(nested->subType)))
        return nullptr;
    return nested;
}

std::string sizeText(const Shape& shape)
{
    if (!shape.conditional)
        return fmt::format("{}", shape.headBytes.front());
    std::string values;
    for (const int bytes : shape.headBytes)
        values += fmt::format("{}{}", values.empty() ? "" : ", ", bytes);
    return values;
}

std::string fillEntry(const RecordType& sub, std::string_view entry, std::string_view father,
                      std::string_view parent, std::string_view bytes, std::string_view indent)
{
    const Shape shape = shapeOf(sub);
    return fmt::format("{indent}start_{sub}({entry}, {father}, {bytes} * 8);\n"
                       "{indent}load_{sub}(at, {revision}{parent}{entry});\n",
                       fmt::arg("indent", indent), fmt::arg("sub", sub.name),
                       fmt::arg("entry", entry), fmt::arg("father", father),
                       fmt::arg("bytes", bytes),
                       fmt::arg("revision", shape.conditional ? "record->Revision, " : ""),
                       fmt::arg("parent", needsParent(sub) ? fmt::format("{}, ", parent) : ""));
}

// One allocation, one check, straight loads.
std::string plainBlocks(const Format& format, const RecordType& type, const Field& field,
                        const RecordType& sub)
{
    const Shape shape = shapeOf(sub);
    const std::string name = identifier(field.name);
    std::string text = "    {\n";
    if (shape.conditional) {
        text += fmt::format("        constexpr uint16_t knownBytes[8] = {{{}}};\n"
                            "        const uint32_t known = knownBytes[record->Revision];\n",
                            sizeText(shape));
    } else {
        text += fmt::format("        constexpr uint32_t known = {};\n", sizeText(shape));
    }
    text += fmt::format(
        "        const uint32_t count = record->{count};\n"
        "        const uint32_t entry = entryBytes({length}, known);\n"
        "        if (entry < known || !isInside(size, end, uint64_t{{count}} * entry)) {{\n"
        "{free}"
        "            return {exact};\n"
        "        }}\n"
        "        at = buffer + end / 8;\n"
        "        if (count != 0)\n"
        "            record->{name} = allocateEntries<{subRecord}>(count);\n"
        "        for (uint32_t i = 0; i < count; ++i, at += entry) {{\n"
        "            {subRecord}& item = record->{name}[i];\n"
        "{fill}"
        "        }}\n"
        "        record->korcg_bits += count * known * 8;\n"
        "        end += count * entry * 8;\n"
        "    }}\n",
        fmt::arg("count", identifier(row(type, field.count).name)),
        fmt::arg("length", lengthOf(format, type, field)),
        fmt::arg("free", freeArraysBefore(type, field, "            ")),
        fmt::arg("exact", exactCall(type)), fmt::arg("name", name),
        fmt::arg("subRecord", recordName(sub)),
        fmt::arg("fill", fillEntry(sub, "item", "record", "*record", "known", "            ")));
    return text;
}

// Two levels of entries in one allocation. How many of the inner ones there are is known only when
// the last outer one is read, so there is room for as many as the block can hold.
std::string nestedBlocks(const Format& format, const RecordType& type, const Field& field,
                         const RecordType& sub, const Field& inner)
{
    const RecordType& leaf = *format.find(inner.subType);
    const Shape leafShape = shapeOf(leaf);
    const Shape subShape = shapeOf(sub);
    std::string text = "    {\n";
    text += fmt::format("        constexpr uint32_t known = {};\n", sizeText(subShape));
    if (leafShape.conditional) {
        text += fmt::format("        constexpr uint16_t nestedBytes[8] = {{{}}};\n"
                            "        const uint32_t nestedKnown = nestedBytes[record->Revision];\n",
                            sizeText(leafShape));
    } else {
        text += fmt::format("        constexpr uint32_t nestedKnown = {};\n", sizeText(leafShape));
    }
    text += fmt::format(
        "        const uint32_t count = record->{count};\n"
        "        const uint32_t entry = entryBytes({length}, known);\n"
        "        const uint32_t nestedEntry = entryBytes(record->{nestedLength}, nestedKnown);\n"
        "        if (entry < known || nestedEntry < nestedKnown ||\n"
        "            !isInside(size, end, uint64_t{{count}} * entry)) {{\n"
        "{free}"
        "            return {exact};\n"
        "        }}\n"
        "        const uint32_t room = (size - end / 8 - count * entry) / nestedEntry;\n"
        "        auto* items = count == 0 ? nullptr : allocateEntries<{subRecord}, {leafRecord}>("
        "count, room);\n"
        "        auto* const nested = nestedEntries<{leafRecord}>(items, count);\n"
        "        auto* next = nested;\n"
        "        at = buffer + end / 8;\n"
        "        for (uint32_t i = 0; i < count; ++i) {{\n"
        "            {subRecord}& item = items[i];\n"
        "{fill}"
        "            item.korcg_bits += item.{innerCount} * nestedKnown * 8;\n"
        "            at += entry;\n"
        "            if (item.{innerCount} > nested + room - next) {{\n"
        "{freeInLoop}"
        "                std::free(items);\n"
        "                return {exact};\n"
        "            }}\n"
        "            if (item.{innerCount} != 0) {{\n"
        "                item.{inner} = next;\n"
        "                item.{inner}_storage = ArrayStorage::Borrowed;\n"
        "            }}\n"
        "            for (uint32_t j = 0; j < item.{innerCount}; ++j, at += nestedEntry) {{\n"
        "                {leafRecord}& nestedItem = *next++;\n"
        "{fillLeaf}"
        "            }}\n"
        "        }}\n"
        "        record->korcg_bits += (count * known + static_cast<uint32_t>(next - nested) * "
        "nestedKnown) * 8;\n"
        "        record->{name} = items;\n"
        "        record->{name}_storage = next == nested ? ArrayStorage::Own : "
        "ArrayStorage::Shared;\n"
        "        end = static_cast<uint32_t>(at - buffer) * 8;\n"
        "    }}\n",
        fmt::arg("count", identifier(row(type, field.count).name)),
        fmt::arg("length", lengthOf(format, type, field)),
        fmt::arg("nestedLength", identifier(row(type, inner.length).name)),
        fmt::arg("free", freeArraysBefore(type, field, "            ")),
        fmt::arg("freeInLoop", freeArraysBefore(type, field, "                ")),
        fmt::arg("exact", exactCall(type)), fmt::arg("name", identifier(field.name)),
        fmt::arg("subRecord", recordName(sub)), fmt::arg("leafRecord", recordName(leaf)),
        fmt::arg("inner", identifier(inner.name)),
        fmt::arg("innerCount", identifier(row(sub, inner.count).name)),
        fmt::arg("fill", fillEntry(sub, "item", "record", "*record", "known", "            ")),
        fmt::arg("fillLeaf", fillEntry(leaf, "nestedItem", "&item", "item", "nestedKnown",
                                       "                ")));
    return text;
}

// Entries of a shape of their own are decoded one by one.
std::string otherBlocks(const Format& format, const RecordType& type, const Field& field)
{
    const std::string name = identifier(field.name);
    return fmt::format(
        "    if (record->{count} != 0)\n"
        "        record->{name} = static_cast<{subRecord}*>(std::calloc(record->{count}, "
        "sizeof({subRecord})));\n"
        "    for (uint32_t i = 0; i < record->{count}; ++i) {{\n"
        "        const int32_t result = TQX_decode_{sub}(context, buffer, size, &end, record, "
        "{length}, &record->{name}[i]);\n"
        "        if (result < 0) {{\n"
        "            *offset = end;\n"
        "            return result;\n"
        "        }}\n"
        "        record->korcg_bits += record->{name}[i].korcg_bits;\n"
        "    }}\n",
        fmt::arg("count", identifier(row(type, field.count).name)), fmt::arg("name", name),
        fmt::arg("subRecord", recordName(field.subType)), fmt::arg("sub", field.subType),
        fmt::arg("length", bitsOf(lengthOf(format, type, field))));
}

std::string embedded(const Format& format, const RecordType& type, const Field& field)
{
    return fmt::format("    if ({condition}) {{\n"
                       "        const int32_t result = TQX_decode_{sub}(context, buffer, size, "
                       "&end, record, {length}, &record->{name});\n"
                       "        if (result < 0) {{\n"
                       "            *offset = end;\n"
                       "            return result;\n"
                       "        }}\n"
                       "        record->korcg_bits += record->{name}.korcg_bits;\n"
                       "    }}\n",
                       fmt::arg("condition", condition(type, field)),
                       fmt::arg("sub", field.subType),
                       fmt::arg("length", bitsOf(lengthOf(format, type, field))),
                       fmt::arg("name", identifier(field.name)));
}

// An array that is not there is as long as its count says for all who do not ask whether it is
// there: none of it may be left over from an earlier use of the record.
std::string clearUnread(const RecordType& type, int index, const std::string& count)
{
    std::string text;
    for (int i = index; i < static_cast<int>(type.fields.size()); ++i) {
        if (i == index || row(type, i).parent == index) {
            text += fmt::format("        clearElements(record->{}, {});\n",
                                identifier(row(type, i).name), count);
        }
    }
    return text;
}

std::string counted(const RecordType& type, int index)
{
    const Field& field = row(type, index);
    const std::string name = identifier(field.name);
    const std::string count = identifier(row(type, field.count).name);
    const int width = bytesOf(field.type);
    const std::string guard = condition(type, field);
    const std::string bytes = field.countsBytes || width == 1
                                  ? fmt::format("uint32_t{{record->{}}}", count)
                                  : fmt::format("uint32_t{{record->{}}} * {}", count, width);
    std::string text = guard.empty() ? "    {\n" : fmt::format("    if ({}) {{\n", guard);
    text += fmt::format("        const uint32_t bytes = {};\n"
                        "        if ({} > {} || !isInside(size, end, bytes))\n"
                        "            return {};\n",
                        bytes, width == 1 ? "bytes" : fmt::format("bytes / {}", width),
                        field.elements, exactCall(type));
    if (!isLoadedByWord(type, index)) {
        text += fmt::format("        std::memcpy(record->{}, buffer + end / 8, bytes);\n", name);
    } else {
        text += fmt::format("        load{}(buffer + end / 8, bytes, *record);\n", name);
    }
    if (field.isText())
        text += fmt::format("        record->{}[bytes] = '\\0';\n", name);
    text += "        record->korcg_bits += bytes * 8;\n"
            "        end += bytes * 8;\n";
    if (!guard.empty()) {
        const std::string elements =
            field.countsBytes && width > 1
                ? fmt::format("(record->{} + {}U) / {}", count, width - 1, width)
                : fmt::format("record->{}{}", count, field.isText() ? " + 1U" : "");
        text += "    } else {\n" + clearUnread(type, index, elements);
    }
    return text + "    }\n";
}

std::string tailStatements(const Format& format, const RecordType& type, int index)
{
    const Field& field = row(type, index);
    if (field.isCounted())
        return counted(type, index);
    if (field.kind == FieldKind::Embedded)
        return embedded(format, type, field);
    const RecordType& sub = *format.find(field.subType);
    if (field.presence == Presence::Always && isPlainSub(sub))
        return plainBlocks(format, type, field, sub);
    if (const Field* inner = nestedArray(format, sub);
        inner != nullptr && field.presence == Presence::Always)
        return nestedBlocks(format, type, field, sub, *inner);
    return otherBlocks(format, type, field);
}

// Whether decoding may turn to the exact decoder at this field.
bool mayTurnBack(const Format& format, const RecordType& type, int index)
{
    const Field& field = row(type, index);
    if (field.kind != FieldKind::Blocks)
        return field.isCounted();
    const RecordType& sub = *format.find(field.subType);
    return isPlainSub(sub) || nestedArray(format, sub) != nullptr;
}

// The exact decoder follows the week itself, so the context is left alone until it is certain that
// decoding does not turn to it.
constexpr const char followWeek[] =
    "    record->TOWc = TQX_continuousTime(context, record->TOW);\n";

bool dependsOnRevision(const Field& field)
{
    return field.presence == Presence::SinceRevision || field.presence == Presence::OnlyRevision;
}

// Whether there are statements for the presence of a field after the head.
bool isConditionKnown(const RecordType& type, int index)
{
    const Field& field = row(type, index);
    if (field.kind == FieldKind::Blocks)
        return field.presence == Presence::Always;
    return !dependsOnRevision(field) || (type.isMain() && field.isCounted() && !field.alwaysSent);
}

bool hasLength(const RecordType& type, int index)
{
    const Field& field = row(type, index);
    return field.kind == FieldKind::Embedded && field.length >= 0;
}

// Whether some record holds one of this type in place. Other plain entries are loaded by the loop
// over their array.
bool isEmbedded(const Format& format, const RecordType& type)
{
    const RecordType& owner = ownerOf(format, type);
    return std::any_of(owner.fields.begin(), owner.fields.end(), [&](const Field& field) {
        return field.kind == FieldKind::Embedded && field.subType == type.name;
    });
}

// Once an entry was decoded on its own or the week is followed there is no way back to the exact
// decoder. Sub-blocks with arrays are decoded inside their main blocks.
bool isStraight(const Format& format, const RecordType& type, const Shape& shape)
{
    if (!shape.straight || !std::all_of(shape.tail.begin(), shape.tail.end(),
                                        [&](int index) { return isConditionKnown(type, index); }))
        return false;
    if (type.isMain()) {
        return std::is_partitioned(shape.tail.begin(), shape.tail.end(),
                                   [&](int index) { return mayTurnBack(format, type, index); });
    }
    const bool arrays = std::any_of(shape.tail.begin(), shape.tail.end(), [&](int index) {
        return row(type, index).kind == FieldKind::Blocks;
    });
    // The stated length of an entry ends before fields with a length of their own.
    return !arrays && !shape.conditional && !needsParent(type) && type.owners.size() == 1 &&
           (!shape.isPlain() || isEmbedded(format, type)) &&
           std::is_partitioned(shape.tail.begin(), shape.tail.end(),
                               [&](int index) { return !hasLength(type, index); });
}

// Statements up to the end of the fields at constant places.
std::string mainHead(const RecordType& type, const Shape& shape)
{
    std::string text;
    if (shape.conditional) {
        text = fmt::format("    constexpr uint16_t headBytes[8] = {{{}}};\n"
                           "    if (father != nullptr || explicitLength != 0 || !isInside(size, "
                           "start, 8))\n"
                           "        return {};\n"
                           "    const uint8_t* at = buffer + start / 8;\n"
                           "    const unsigned revision = at[5] >> 5U;\n"
                           "    const uint32_t head = headBytes[revision];\n"
                           "    if (!isInside(size, start, head))\n"
                           "        return {};\n",
                           sizeText(shape), exactCall(type), exactCall(type));
    } else {
        text = fmt::format("    constexpr uint32_t head = {};\n"
                           "    if (father != nullptr || explicitLength != 0 || !isInside(size, "
                           "start, head))\n"
                           "        return {};\n"
                           "    const uint8_t* at = buffer + start / 8;\n",
                           sizeText(shape), exactCall(type));
    }
    return text + fmt::format("    start_{0}(*record, nullptr, head * 8);\n"
                              "    loadHeader(at, *record);\n"
                              "    load_{0}(at, {1}*record);\n",
                              type.name, shape.conditional ? "revision, " : "");
}

std::string entryHead(const Format& format, const RecordType& type, const Shape& shape)
{
    std::string text = fmt::format("    constexpr uint32_t head = {};\n", sizeText(shape));
    std::string guard;
    if (!shape.tail.empty() && hasLength(type, shape.tail.back())) {
        const RecordType& main = ownerOf(format, type);
        text += fmt::format("    const auto* main = fatherAs<{}>(father, {});\n", recordName(main),
                            main.record);
        guard = "main == nullptr || ";
    }
    return text + fmt::format("    if ({guard}!isInside(size, start, head))\n"
                              "        return {exact};\n"
                              "    start_{name}(*record, father, head * 8);\n"
                              "    load_{name}(buffer + start / 8, *record);\n",
                              fmt::arg("guard", guard), fmt::arg("exact", exactCall(type)),
                              fmt::arg("name", type.name));
}

std::string applyLength(const RecordType& type)
{
    return fmt::format("    if (explicitLength != 0) {{\n"
                       "        // Also where the offset would wrap or the result overflow.\n"
                       "        if (end - start > explicitLength || explicitLength > ~start ||\n"
                       "            explicitLength > 0x7fffffffU)\n"
                       "            return {};\n"
                       "        end = start + explicitLength;\n"
                       "    }}\n",
                       exactCall(type));
}

} // namespace

std::string decodeBody(const Format& format, const RecordType& type)
{
    const Shape shape = shapeOf(type);
    if (!isStraight(format, type, shape))
        return fmt::format("    return {};\n", exactCall(type));
    std::string text = "    const uint32_t start = *offset;\n";
    text += type.isMain() ? mainHead(type, shape) : entryHead(format, type, shape);
    text += "    uint32_t end = start + head * 8;\n";
    const auto lengths = std::partition_point(shape.tail.begin(), shape.tail.end(),
                                              [&](int index) { return !hasLength(type, index); });
    bool followed = !type.isMain();
    for (auto index = shape.tail.begin(); index != shape.tail.end(); ++index) {
        if (!followed && !mayTurnBack(format, type, *index)) {
            text += followWeek;
            followed = true;
        }
        if (index == lengths && !type.isMain())
            text += applyLength(type);
        text += tailStatements(format, type, *index);
    }
    if (lengths == shape.tail.end() && !type.isMain())
        text += applyLength(type);
    if (!followed)
        text += followWeek;
    return text + "    *offset = end;\n    return static_cast<int32_t>(end - start);\n";
}

} // namespace korcg::generator::codec
