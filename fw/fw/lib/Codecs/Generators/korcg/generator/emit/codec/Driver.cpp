#include "emit/codec/Parts.h"
#include "model/Limits.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace korcg::generator::codec
{

namespace
{

// Bits of main blocks of the first edition: byte (e + 1) / 8, bit 0x80 >> e % 8; of those of later
// ones, counted from the first: byte e / 8, likewise.
std::vector<unsigned> enableMask(const Format& format, bool later)
{
    const auto lastFirst = static_cast<unsigned>(format.lastFirstRecord);
    std::vector<unsigned> mask(later ? laterTypes / 8 : (lastFirst + 1) / 8 + 1);
    for (const RecordType& type : format.types) {
        if (!type.isMain() || (type.edition > 1) != later)
            continue;
        const unsigned e = static_cast<unsigned>(type.record) - (later ? lastFirst + 1 : 0);
        mask.at((later ? e : e + 1) / 8) |= 0x80U >> (e % 8);
    }
    return mask;
}

std::string maskText(const std::string& name, const std::vector<unsigned>& mask)
{
    std::string bytes;
    int column = 0;
    for (const unsigned byte : mask)
        bytes += fmt::format("{}{:#04x},", column++ % 12 == 0 ? "\n        " : " ", byte);
    return fmt::format("    static constexpr uint8_t {}[{}] = {{{}\n    }};\n", name, mask.size(),
                       bytes);
}

bool hasLaterTypes(const Format& format)
{
    return std::any_of(format.types.begin(), format.types.end(),
                       [](const RecordType& type) { return type.edition > 1; });
}

std::string contextFunction(const Format& format)
{
    std::string text = "void TQX_init_context(TQX_Context_s* context)\n{\n" +
                       maskText("mainBlocks", enableMask(format, false));
    if (hasLaterTypes(format))
        text += maskText("laterBlocks", enableMask(format, true));
    text += "    *context = {};\n"
            "    std::memcpy(context->enableMask, mainBlocks, sizeof mainBlocks);\n";
    if (hasLaterTypes(format))
        text += "    std::memcpy(context->laterMask, laterBlocks, sizeof laterBlocks);\n";
    return text + "}\n\n";
}

std::string dispatch(const Selection& selection)
{
    std::string cases;
    for (const RecordType* type : selection) {
        if (type->isMain()) {
            cases += fmt::format("    case {}:\n"
                                 "        if (!TQX_isEnabled(context, {}))\n"
                                 "            return {};\n"
                                 "        return TQX_decode_{}(context, buffer, size, &offset, "
                                 "nullptr, 0, static_cast<{}*>(record));\n",
                                 type->number, type->record, type->disabled, type->name,
                                 recordName(*type));
        }
    }
    return fmt::format(
        "int32_t TQX_decode(TQX_Context_s* context, const uint8_t* buffer, uint16_t size, void* "
        "record)\n{{\n"
        "    if (size > 6) {{\n"
        "        const uint16_t id = korcg_load_u16(buffer + 4);\n"
        "        writeMember<uint16_t>(record, offsetof(TQX_MainHeader_s, ID), id);\n"
        "        writeMember<uint16_t>(record, offsetof(TQX_MainHeader_s, BlockNumber),\n"
        "            TQX_blockNumberOf(id));\n"
        "    }}\n"
        "    uint32_t offset = 0;\n"
        "    const auto number = readMember<uint16_t>(record, offsetof(TQX_MainHeader_s, "
        "BlockNumber));\n"
        "    switch (size > 6 ? number : 0) {{\n{}    default:\n        break;\n    }}\n"
        "    if (context != nullptr)\n"
        "        context->lastUnknownBlockNumber = number;\n"
        "    return TQX_invalidMessage;\n}}\n\n",
        cases);
}

std::string layouts(const Selection& selection)
{
    std::string entries;
    std::string numbers;
    int next = 0;
    int column = 0;
    for (const RecordType* type : selection) {
        for (; next < type->record; ++next)
            entries += fmt::format("{}nullptr,", column++ % 12 == 0 ? "\n        " : " ");
        entries += fmt::format("\n        &layout_{},", type->name);
        column = 0;
        next = type->record + 1;
        if (type->isMain()) {
            numbers +=
                fmt::format("    case {}:\n        return {};\n", type->number, type->record);
        }
    }
    return fmt::format(
        "const TQX_TypeLayout* TQX_layout(uint32_t recordType)\n{{\n"
        "    static const TQX_TypeLayout* const layouts[] = {{{}\n    }};\n"
        "    return recordType < std::size(layouts) ? layouts[recordType] : nullptr;\n}}\n\n"
        "uint32_t TQX_recordType(uint16_t blockNumber)\n{{\n    switch (blockNumber) {{\n{}"
        "    default:\n        return 0;\n    }}\n}}\n",
        entries, numbers);
}

} // namespace

std::string editionHeader(const Format& format)
{
    int lastRecord = format.lastFirstRecord;
    for (const RecordType& type : format.types)
        lastRecord = std::max(lastRecord, type.record);
    return fmt::format(
        "#pragma once\n\n#include <cstdint>\n\n"
        "/// Whether there are record types that the first edition of the format does not have.\n"
        "#define TQX_HAS_LATER_TYPES {laterTypes}\n\n"
        "namespace Kor::MessageApi\n{{\n\n"
        "/// Edition of the format that this is built for.\n"
        "constexpr unsigned TQX_edition = {edition};\n\n"
        "/// Record types are numbered from 1 to this.\n"
        "constexpr uint32_t TQX_lastRecordType = {lastRecord};\n\n"
        "/// Those up to this one are of the first edition.\n"
        "constexpr uint32_t TQX_lastFirstRecordType = {lastFirstRecord};\n\n"
        "/// How many record types of later editions a context has bits for.\n"
        "constexpr uint32_t TQX_laterRecordTypes = {later};\n\n"
        "/// Codes go from -1 down to this.\n"
        "constexpr int32_t TQX_lowestCode = {lowestCode};\n\n"
        "/// Codes of types that others added to this build, if any: the first of them, and how "
        "many\n"
        "/// there are from it down.\n"
        "constexpr int32_t TQX_firstAddedCode = {firstAddedCode};\n"
        "constexpr int32_t TQX_addedCodes = {addedCodes};\n\n"
        "/// Code of an unknown block number, TQX_ERR_INVALID_MESSAGE.\n"
        "constexpr int32_t TQX_invalidMessage = {invalidMessage};\n\n"
        "}} // namespace Kor::MessageApi\n",
        fmt::arg("laterTypes", hasLaterTypes(format) ? 1 : 0), fmt::arg("edition", format.edition),
        fmt::arg("lastRecord", lastRecord), fmt::arg("lastFirstRecord", format.lastFirstRecord),
        fmt::arg("later", laterTypes),
        fmt::arg("lowestCode", -static_cast<int>(format.codeNames.size())),
        fmt::arg("firstAddedCode", format.firstAddedCode),
        fmt::arg("addedCodes", format.addedCodeNames.size()),
        fmt::arg("invalidMessage", format.invalidMessage));
}

std::string driver(const Format& format, const Selection& selection)
{
    return contextFunction(format) + dispatch(selection) + layouts(selection);
}

std::string errorNames(const Format& format)
{
    std::string entries;
    for (auto name = format.codeNames.rbegin(); name != format.codeNames.rend(); ++name)
        entries += fmt::format("    \"{}\",\n", *name);
    std::string added;
    std::string lookUp;
    if (!format.addedCodeNames.empty()) {
        for (const std::string& name : format.addedCodeNames)
            added += fmt::format("    \"{}\",\n", name);
        added = fmt::format("// By {} - code.\nconst char* const addedNames[] = {{\n{}}};\n\n",
                            format.firstAddedCode, added);
        lookUp = fmt::format("    if (code <= {0} && code > {0} - {1})\n"
                             "        return addedNames[{0} - code];\n",
                             format.firstAddedCode, format.addedCodeNames.size());
    }
    return fmt::format(
        "namespace\n{{\n\n// By code + {0}.\nconst char* const names[] = {{\n{1}}};\n\n{2}"
        "}} // namespace\n\n"
        "const char* TQX_errorName(int32_t code)\n{{\n"
        "    if (code >= 0)\n        return \"TQX_ERR_NONE\";\n{3}"
        "    return code < -{0} ? \"???\" : names[code + {0}];\n}}\n",
        format.codeNames.size(), entries, added, lookUp);
}

} // namespace korcg::generator::codec
