#include "emit/codec/Parts.h"
#include "emit/codec/Shape.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator::codec
{

namespace
{

constexpr const char decodeParameters[] =
    "TQX_Context_s* context, const uint8_t* buffer, uint16_t size, uint32_t* offset, void* father, "
    "uint32_t explicitLength, ";

std::string appendFunctions(const RecordType& type)
{
    std::string text;
    for (std::size_t index = 0; index < type.fields.size(); ++index) {
        const Field& field = type.fields[index];
        if (field.kind != FieldKind::Blocks)
            continue;
        text += fmt::format("{0}* TQX_append_{1}_{2}({3}* record)\n{{\n"
                            "    return static_cast<{0}*>(appendElement(layout_{1}, "
                            "layout_{1}.fields[{4}], record));\n}}\n\n",
                            recordName(field.subType), type.name, identifier(field.name),
                            recordName(type), index);
    }
    return text;
}

std::string partLoads(const RecordType& type, int parent)
{
    std::string text;
    for (const Field& part : type.fields) {
        if (part.kind == FieldKind::Bits && part.parent == parent) {
            text += fmt::format("        record.{}[i] = static_cast<{}>(word >> {} & {:#x}U);\n",
                                identifier(part.name), memberType(part.type), part.shift,
                                (uint64_t{1} << part.width) - 1);
        }
    }
    return text;
}

// A payload that is counted in bytes may end inside a word: what there is of it begins the next.
std::string tailLoad(const Field& field)
{
    return fmt::format("    if (bytes % {width} != 0) {{\n"
                       "        {type} word = 0;\n"
                       "        for (uint32_t i = 0; i < bytes % {width}; ++i)\n"
                       "            word |= {type}{{at[i]}} << (8 * i);\n"
                       "        record.{name}[bytes / {width}] = word;\n"
                       "    }}\n",
                       fmt::arg("width", bytesOf(field.type)),
                       fmt::arg("type", memberType(field.type)),
                       fmt::arg("name", identifier(field.name)));
}

// Functions that load a counted array whose elements are words or are split into parts.
std::string wordLoads(const RecordType& type)
{
    std::string text;
    for (int index = 0; index < static_cast<int>(type.fields.size()); ++index) {
        const Field& field = type.fields[static_cast<std::size_t>(index)];
        if (!isLoadedByWord(type, index))
            continue;
        const int width = bytesOf(field.type);
        text += fmt::format(
            "void load{name}(const uint8_t* at, uint32_t bytes, {record}& record)\n{{\n"
            "    for (uint32_t i = 0; i < bytes / {width}; ++i, at += {width}) {{\n"
            "        const {type} word = korcg_load_{kind}{bits}(at);\n"
            "        record.{name}[i] = word;\n"
            "{parts}    }}\n"
            "{tail}}}\n\n",
            fmt::arg("name", identifier(field.name)), fmt::arg("record", recordName(type)),
            fmt::arg("width", width), fmt::arg("bits", width * 8),
            fmt::arg("kind", isFloat(field.type)    ? "f"
                             : isSigned(field.type) ? "i"
                                                    : "u"),
            fmt::arg("type", memberType(field.type)), fmt::arg("parts", partLoads(type, index)),
            fmt::arg("tail", field.countsBytes && width > 1 ? tailLoad(field) : ""));
    }
    return text.empty() ? text : "namespace\n{\n\n" + text + "} // namespace\n\n";
}

} // namespace

std::string exportedDeclarations(const RecordType& type)
{
    const std::string record = "Kor::MessageApi::" + recordName(type);
    std::string text =
        fmt::format("TQX_CODEC_API int TQX_init_{}({}* record);\n", type.name, record);
    text += fmt::format("TQX_CODEC_API int32_t TQX_decode_{}(Kor::MessageApi::{}{}* record);\n",
                        type.name, decodeParameters, record);
    if (type.isMain()) {
        text += fmt::format("TQX_CODEC_API int TQX_encode_{}(unsigned char* buffer, unsigned short "
                            "bufferSize, {}* record);\n",
                            type.name, record);
    }
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Blocks) {
            text +=
                fmt::format("TQX_CODEC_API Kor::MessageApi::{}* TQX_append_{}_{}({}* record);\n",
                            recordName(field.subType), type.name, identifier(field.name), record);
        }
    }
    return text + "\n";
}

std::string exportedFunctions(const Format& format, const RecordType& type)
{
    const std::string record = recordName(type);
    std::string text = wordLoads(type);
    text += fmt::format("int TQX_init_{0}({1}* record)\n{{\n    init_{0}(*record);\n    return "
                        "0;\n}}\n\n",
                        type.name, record);
    text += fmt::format("int32_t TQX_decode_{}({}{}* record)\n{{\n{}}}\n\n", type.name,
                        decodeParameters, record, decodeBody(format, type));
    if (type.isMain()) {
        text += fmt::format("int TQX_encode_{0}(unsigned char* buffer, unsigned short bufferSize, "
                            "{1}* record)\n{{\n    return encodeRecord(layout_{0}, buffer, "
                            "bufferSize, record);\n}}\n\n",
                            type.name, record);
    }
    return text + appendFunctions(type);
}

} // namespace korcg::generator::codec
