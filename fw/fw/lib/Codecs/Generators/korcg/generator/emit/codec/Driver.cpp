#include "emit/codec/Parts.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <array>

namespace korcg::generator::codec
{

namespace
{

// Bits of all main blocks of the format, described or not: byte (e + 1) / 8, bit 0x80 >> e % 8.
std::array<unsigned, 48> enableMask(const Format& format)
{
    std::array<unsigned, 48> mask{};
    const auto set = [&mask](int record) {
        const auto e = static_cast<unsigned>(record);
        mask.at((e + 1) / 8) |= 0x80U >> (e % 8);
    };
    for (const RecordType& type : format.types) {
        if (type.isMain())
            set(type.record);
    }
    for (const ReservedType& type : format.reserved) {
        if (type.number != 0)
            set(type.record);
    }
    return mask;
}

std::string contextFunction(const Format& format)
{
    std::string bytes;
    int column = 0;
    for (const unsigned byte : enableMask(format))
        bytes += fmt::format("{}{:#04x},", column++ % 12 == 0 ? "\n        " : " ", byte);
    return fmt::format("void TQX_init_context(TQX_Context_s* context)\n{{\n"
                       "    static constexpr uint8_t mainBlocks[48] = {{{}\n    }};\n"
                       "    *context = {{}};\n"
                       "    std::memcpy(context->enableMask, mainBlocks, sizeof mainBlocks);\n"
                       "}}\n\n",
                       bytes);
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
        "    constexpr int32_t invalidMessage = -6072;\n"
        "    if (size > 6) {{\n"
        "        const uint16_t id = korcg_load_u16(buffer + 4);\n"
        "        writeMember<uint16_t>(record, offsetof(TQX_MainHeader_s, ID), id);\n"
        "        writeMember<uint16_t>(record, offsetof(TQX_MainHeader_s, BlockNumber), id & "
        "0x1fffU);\n"
        "    }}\n"
        "    uint32_t offset = 0;\n"
        "    const auto number = readMember<uint16_t>(record, offsetof(TQX_MainHeader_s, "
        "BlockNumber));\n"
        "    switch (size > 6 ? number : 0) {{\n{}    default:\n        break;\n    }}\n"
        "    if (context != nullptr)\n"
        "        context->lastUnknownBlockNumber = number;\n"
        "    return invalidMessage;\n}}\n\n",
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

std::string driver(const Format& format, const Selection& selection)
{
    return contextFunction(format) + dispatch(selection) + layouts(selection);
}

std::string errorNames(const Format& format)
{
    std::string entries;
    for (auto name = format.codeNames.rbegin(); name != format.codeNames.rend(); ++name)
        entries += fmt::format("    \"{}\",\n", *name);
    return fmt::format(
        "namespace\n{{\n\n// By code + {0}.\nconst char* const names[] = {{\n{1}}};\n\n"
        "}} // namespace\n\n"
        "const char* TQX_errorName(int32_t code)\n{{\n"
        "    if (code >= 0)\n        return \"TQX_ERR_NONE\";\n"
        "    return code < -{0} ? \"???\" : names[code + {0}];\n}}\n",
        format.codeNames.size(), entries);
}

} // namespace korcg::generator::codec
