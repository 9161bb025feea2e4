#include "emit/Names.h"
#include "emit/codec/Parts.h"
#include "emit/codec/Shape.h"

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

std::string exactCall(const RecordType& type)
{
    return fmt::format("decodeExactly(layout_{}, context, buffer, size, offset, father, "
                       "explicitLength, record)",
                       type.name);
}

std::string lengthOf(const RecordType& type, const Field& field)
{
    return field.length < 0 ? std::string("0U")
                            : "record->" + identifier(row(type, field.length).name);
}

std::string selection(const RecordType& type, const Field& field)
{
    if (field.presence != Presence::Selected)
        return {};
    return fmt::format("record->{} == {}", identifier(row(type, field.selector).name),
                       field.presenceValue);
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
                      std::string_view bytes, std::string_view indent)
{
    const Shape shape = shapeOf(sub);
    return fmt::format("{0}start_{1}({2}, {3});\n"
                       "{0}load_{1}(at, {4}{2});\n"
                       "{0}{2}.korcg_bits = {5} * 8;\n",
                       indent, sub.name, entry, father,
                       shape.conditional ? "record->Revision, " : "", bytes);
}

// One allocation, one check, straight loads.
std::string plainBlocks(const RecordType& type, const Field& field, const RecordType& sub)
{
    const Shape shape = shapeOf(sub);
    const std::string name = identifier(field.name);
    std::string text = "    {\n";
    if (shape.conditional)
        text += fmt::format("        constexpr uint16_t knownBytes[8] = {{{}}};\n"
                            "        const uint32_t known = knownBytes[record->Revision];\n",
                            sizeText(shape));
    else
        text += fmt::format("        constexpr uint32_t known = {};\n", sizeText(shape));
    text += fmt::format(
        "        const uint32_t count = record->{count};\n"
        "        const uint32_t entry = entryBytes({length}, known);\n"
        "        if (entry < known || !isInside(size, end, uint64_t{{count}} * entry))\n"
        "            return {exact};\n"
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
        fmt::arg("length", lengthOf(type, field)), fmt::arg("exact", exactCall(type)),
        fmt::arg("name", name), fmt::arg("subRecord", recordName(sub)),
        fmt::arg("fill", fillEntry(sub, "item", "record", "known", "            ")));
    return text;
}

// Two levels of entries in one allocation, sized by a first walk over the counts.
std::string nestedBlocks(const Format& format, const RecordType& type, const Field& field,
                         const RecordType& sub, const Field& inner)
{
    const RecordType& leaf = *format.find(inner.subType);
    const Shape leafShape = shapeOf(leaf);
    const Shape subShape = shapeOf(sub);
    const Field& nestedCount = row(sub, inner.count);
    const std::string name = identifier(field.name);
    const std::string loadCount =
        fmt::format("korcg_load_u{}(buffer + place + {})", bytesOf(nestedCount.type) * 8,
                    nestedCount.wireOffset);
    std::string text = "    {\n";
    text += fmt::format("        constexpr uint32_t known = {};\n", sizeText(subShape));
    if (leafShape.conditional)
        text += fmt::format("        constexpr uint16_t nestedBytes[8] = {{{}}};\n"
                            "        const uint32_t nestedKnown = nestedBytes[record->Revision];\n",
                            sizeText(leafShape));
    else
        text += fmt::format("        constexpr uint32_t nestedKnown = {};\n", sizeText(leafShape));
    text += fmt::format(
        "        const uint32_t count = record->{count};\n"
        "        const uint32_t entry = entryBytes({length}, known);\n"
        "        const uint32_t nestedEntry = entryBytes(record->{nestedLength}, nestedKnown);\n"
        "        uint64_t place = end / 8;\n"
        "        size_t nested = 0;\n"
        "        bool whole = entry >= known && nestedEntry >= nestedKnown;\n"
        "        for (uint32_t i = 0; i < count && whole; ++i) {{\n"
        "            whole = place + known <= size;\n"
        "            if (whole) {{\n"
        "                const uint32_t inside = {loadCount};\n"
        "                nested += inside;\n"
        "                place += entry + uint64_t{{inside}} * nestedEntry;\n"
        "            }}\n"
        "        }}\n"
        "        if (!whole || place > size)\n"
        "            return {exact};\n"
        "        at = buffer + end / 8;\n"
        "        if (count != 0) {{\n"
        "            record->{name} = allocateEntries<{subRecord}, {leafRecord}>(count, nested);\n"
        "            record->{name}_storage = nested != 0 ? ArrayStorage::Shared : "
        "ArrayStorage::Own;\n"
        "        }}\n"
        "        auto* spare = nestedEntries<{leafRecord}>(record->{name}, count);\n"
        "        for (uint32_t i = 0; i < count; ++i) {{\n"
        "            {subRecord}& item = record->{name}[i];\n"
        "{fill}"
        "            at += entry;\n"
        "            if (item.{innerCount} != 0) {{\n"
        "                item.{inner} = spare;\n"
        "                item.{inner}_storage = ArrayStorage::Borrowed;\n"
        "            }}\n"
        "            for (uint32_t j = 0; j < item.{innerCount}; ++j, at += nestedEntry) {{\n"
        "                {leafRecord}& nestedItem = *spare++;\n"
        "{fillLeaf}"
        "            }}\n"
        "            item.korcg_bits += item.{innerCount} * nestedKnown * 8;\n"
        "            record->korcg_bits += item.korcg_bits;\n"
        "        }}\n"
        "        end = static_cast<uint32_t>(place) * 8;\n"
        "    }}\n",
        fmt::arg("count", identifier(row(type, field.count).name)),
        fmt::arg("length", lengthOf(type, field)),
        fmt::arg("nestedLength", identifier(row(type, inner.length).name)),
        fmt::arg("loadCount", loadCount), fmt::arg("exact", exactCall(type)),
        fmt::arg("name", name), fmt::arg("subRecord", recordName(sub)),
        fmt::arg("leafRecord", recordName(leaf)), fmt::arg("inner", identifier(inner.name)),
        fmt::arg("innerCount", identifier(nestedCount.name)),
        fmt::arg("fill", fillEntry(sub, "item", "record", "known", "            ")),
        fmt::arg("fillLeaf",
                 fillEntry(leaf, "nestedItem", "&item", "nestedKnown", "                ")));
    return text;
}

// Entries of a shape of their own go through the exact decoder one by one.
std::string otherBlocks(const RecordType& type, const Field& field)
{
    const std::string name = identifier(field.name);
    return fmt::format(
        "    if (record->{count} != 0)\n"
        "        record->{name} = static_cast<{subRecord}*>(std::calloc(record->{count}, "
        "sizeof({subRecord})));\n"
        "    for (uint32_t i = 0; i < record->{count}; ++i) {{\n"
        "        const int32_t result = decodeExactly(layout_{sub}, context, buffer, size, &end, "
        "record,\n"
        "                                             {length} * 8U, &record->{name}[i]);\n"
        "        if (result < 0) {{\n"
        "            *offset = end;\n"
        "            return result;\n"
        "        }}\n"
        "        record->korcg_bits += record->{name}[i].korcg_bits;\n"
        "    }}\n",
        fmt::arg("count", identifier(row(type, field.count).name)), fmt::arg("name", name),
        fmt::arg("subRecord", recordName(field.subType)), fmt::arg("sub", field.subType),
        fmt::arg("length", lengthOf(type, field)));
}

std::string embedded(const RecordType& type, const Field& field)
{
    return fmt::format("    if ({condition}) {{\n"
                       "        const int32_t result = decodeExactly(layout_{sub}, context, "
                       "buffer, size, &end, record,\n"
                       "                                             {length} * 8U, "
                       "&record->{name});\n"
                       "        if (result < 0) {{\n"
                       "            *offset = end;\n"
                       "            return result;\n"
                       "        }}\n"
                       "        record->korcg_bits += record->{name}.korcg_bits;\n"
                       "    }}\n",
                       fmt::arg("condition", selection(type, field)),
                       fmt::arg("sub", field.subType), fmt::arg("length", lengthOf(type, field)),
                       fmt::arg("name", identifier(field.name)));
}

std::string counted(const RecordType& type, int index)
{
    const Field& field = row(type, index);
    const std::string name = identifier(field.name);
    const std::string count = identifier(row(type, field.count).name);
    const int width = bytesOf(field.type);
    const std::string guard = selection(type, field);
    const std::string bytes = field.countsBytes || width == 1
                                  ? fmt::format("uint32_t{{record->{}}}", count)
                                  : fmt::format("uint32_t{{record->{}}} * {}", count, width);
    std::string text = guard.empty() ? "    {\n" : fmt::format("    if ({}) {{\n", guard);
    text += fmt::format("        const uint32_t bytes = {};\n"
                        "        if ({} > {} || !isInside(size, end, bytes))\n"
                        "            return {};\n",
                        bytes, width == 1 ? "bytes" : fmt::format("bytes / {}", width),
                        field.elements, exactCall(type));
    if (!isLoadedByWord(type, index))
        text += fmt::format("        std::memcpy(record->{}, buffer + end / 8, bytes);\n", name);
    else
        text += fmt::format("        load{}(buffer + end / 8, bytes, *record);\n", name);
    if (field.isText())
        text += fmt::format("        record->{}[bytes] = '\\0';\n", name);
    return text + "        record->korcg_bits += bytes * 8;\n"
                  "        end += bytes * 8;\n"
                  "    }\n";
}

std::string tailStatements(const Format& format, const RecordType& type, int index)
{
    const Field& field = row(type, index);
    if (field.isCounted())
        return counted(type, index);
    if (field.kind == FieldKind::Embedded)
        return embedded(type, field);
    const RecordType& sub = *format.find(field.subType);
    if (field.presence == Presence::Always && isPlainSub(sub))
        return plainBlocks(type, field, sub);
    if (const Field* inner = nestedArray(format, sub);
        inner != nullptr && field.presence == Presence::Always)
        return nestedBlocks(format, type, field, sub, *inner);
    return otherBlocks(type, field);
}

// Once an array is allocated there is no way back to the exact decoder, so only the first
// sub-block array of a type may still turn to it.
bool isStraight(const Format& format, const RecordType& type, const Shape& shape)
{
    if (!type.isMain() || !shape.straight)
        return false;
    const auto arrays = std::count_if(shape.tail.begin(), shape.tail.end(), [&](int index) {
        return row(type, index).kind == FieldKind::Blocks;
    });
    const auto conditional = std::any_of(shape.tail.begin(), shape.tail.end(), [&](int index) {
        const Field& field = row(type, index);
        return field.presence == Presence::SinceRevision ||
               field.presence == Presence::OnlyRevision ||
               (field.kind == FieldKind::Blocks && field.presence != Presence::Always);
    });
    static_cast<void>(format);
    return arrays <= 1 && !conditional;
}

} // namespace

std::string decodeBody(const Format& format, const RecordType& type)
{
    const Shape shape = shapeOf(type);
    if (!isStraight(format, type, shape))
        return fmt::format("    return {};\n", exactCall(type));
    std::string text = "    const uint32_t start = *offset;\n";
    if (shape.conditional)
        text += fmt::format("    constexpr uint16_t headBytes[8] = {{{}}};\n"
                            "    if (father != nullptr || explicitLength != 0 || !isInside(size, "
                            "start, 8))\n"
                            "        return {};\n"
                            "    const uint8_t* at = buffer + start / 8;\n"
                            "    const unsigned revision = at[5] >> 5U;\n"
                            "    const uint32_t head = headBytes[revision];\n"
                            "    if (!isInside(size, start, head))\n"
                            "        return {};\n",
                            sizeText(shape), exactCall(type), exactCall(type));
    else
        text += fmt::format("    constexpr uint32_t head = {};\n"
                            "    if (father != nullptr || explicitLength != 0 || !isInside(size, "
                            "start, head))\n"
                            "        return {};\n"
                            "    const uint8_t* at = buffer + start / 8;\n",
                            sizeText(shape), exactCall(type));
    text += fmt::format("    start_{0}(*record, nullptr);\n"
                        "    loadHeader(at, context, *record);\n"
                        "    load_{0}(at, {1}*record);\n"
                        "    record->korcg_bits = head * 8;\n"
                        "    uint32_t end = start + head * 8;\n",
                        type.name, shape.conditional ? "revision, " : "");
    for (const int index : shape.tail)
        text += tailStatements(format, type, index);
    return text + "    *offset = end;\n    return static_cast<int32_t>(end - start);\n";
}

} // namespace korcg::generator::codec
