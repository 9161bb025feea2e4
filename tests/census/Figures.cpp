#include "Figures.h"

#include "FieldInfo.h"
#include "MessageInfo.h"
#include "TQX_FormatInfo.h"
#include "TQX_codec.h"

#include <algorithm>
#include <cstring>

namespace
{

bool endsWith(const char* text, const char* end)
{
    const size_t length = std::strlen(text);
    const size_t tail = std::strlen(end);
    return length >= tail && std::strcmp(text + length - tail, end) == 0;
}

bool isNoYes(const FieldInfo& field)
{
    const auto& names = field.getSymbolicValues();
    return names.size() == 2 && names[0].name == "No" && names[1].name == "Yes" &&
           names[0].value == FieldValue::u(0, 1) && names[1].value == FieldValue::u(1, 1);
}

bool isOneBit(const FieldInfo& field)
{
    return field.getType().getKind() == FieldKind::U && field.getType().getWidth() == 1;
}

bool namesDoNotUse(const FieldInfo& field)
{
    const auto& names = field.getSymbolicValues();
    return std::any_of(names.begin(), names.end(), [&field](const auto& symbol) {
        return symbol.name == "DoNotUse" && symbol.value == field.getDoNotUseValue();
    });
}

void countCodes(std::map<std::string, long>& totals)
{
    long codes = 0;
    while (std::strcmp(TQX_errorName(static_cast<int32_t>(-codes - 1)), "???") != 0) {
        const char* name = TQX_errorName(static_cast<int32_t>(-codes - 1));
        ++codes;
        totals["extBufferOverflow"] += endsWith(name, "_EXT_BUFFER_OVERFLOW");
        totals["intBufferOverflow"] += endsWith(name, "_INT_BUFFER_OVERFLOW");
        totals["sizeUnderflow"] += endsWith(name, "_SIZE_UNDERFLOW");
        totals["internal"] += endsWith(name, "_INTERNAL");
        totals["crcChecksum"] += endsWith(name, "_CRC_CHECKSUM");
        totals["disabled"] += endsWith(name, "_DISABLED");
    }
    totals["errorCodes"] = codes;
    totals["extBufferOverflowBody"] = totals["extBufferOverflow"] - totals["mainRecordTypes"] * 7;
    totals["secondSizeUnderflow"] = totals["sizeUnderflow"] - totals["recordTypes"];
}

void countLayouts(std::map<std::string, long>& totals)
{
    using namespace Kor::MessageApi;
    for (uint32_t record = 0; record < 1000; ++record) {
        const TQX_TypeLayout* type = TQX_layout(record);
        if (type == nullptr)
            continue;
        ++totals["recordTypes"];
        ++totals[type->blockNumber != 0 ? "mainRecordTypes" : "subRecordTypes"];
        totals["initFunctions"] += type->init != nullptr;
        totals["encodeFunctions"] += type->encode != nullptr;
        for (int i = 0; i < type->fieldCount; ++i) {
            totals["appendFunctions"] += type->fields[i].append != nullptr;
            totals["subBlockArrays"] +=
                type->hasMessage && type->fields[i].kind == TQX_FieldKind::Blocks;
            totals["embeddedSubBlocks"] +=
                type->hasMessage && type->fields[i].kind == TQX_FieldKind::Embedded;
        }
    }
    // The context has one as well.
    ++totals["initFunctions"];
}

void countField(const FieldInfo& field, std::map<std::string, long>& totals)
{
    ++totals["fields"];
    totals["subMessageFields"] += field.getType().getKind() == FieldKind::SubMessage;
    totals["roleData"] += field.getRole() == FieldInfo::Data;
    totals["roleStructure"] += field.getRole() == FieldInfo::Structure;
    totals["roleReserved"] += field.getRole() == FieldInfo::Reserved;
    totals["optional"] += field.isOptional();
    totals["repeated"] += field.isRepeated();
    totals["virtual"] += field.isVirtual();
    totals["bitMask"] += field.getRepresentationMode() == FieldValue::BitMask;
    totals["subFields"] += field.getSubFieldInfos().size();
    long& most = totals["mostSubFieldsOfOneField"];
    most = std::max<long>(most, field.getSubFieldInfos().size());
    totals["doNotUse"] += field.hasDoNotUseValue();
    totals["doNotUseWithoutName"] += field.hasDoNotUseValue() && !namesDoNotUse(field);
    totals["oneBitFields"] += isOneBit(field);
    totals["noYesFields"] += isOneBit(field) && isNoYes(field);
    totals["scale0.001"] += field.hasScaleFactor() && field.getScaleFactor() == 0.001;
}

void countType(const MessageInfo& info, std::map<std::string, long>& totals)
{
    ++totals["classes"];
    ++totals[info.isMain() ? "mainClasses" : "subClasses"];
    int identifying = 0;
    for (int i = 0; i < info.getFieldInfos().size(); ++i) {
        countField(*info.getFieldInfos()[i], totals);
        identifying += info.isIdentifying(i);
    }
    totals["typesWithoutIdentifyingField"] += identifying == 0;
    totals["typesWithOneIdentifyingField"] += identifying == 1;
    long& most = totals["mostIdentifyingFields"];
    most = std::max<long>(most, identifying);
    if (!info.isMain())
        return;
    totals["headerFields"] += 10;
    totals["flexrate"] += info.getAttribute("flexrate").toBool();
    totals["esoc"] += info.getAttribute("esoc").toBool();
    totals[std::string("timestamp") + static_cast<char>(info.getAttribute("timestamp").toInt())]++;
    totals["typesWithoutText"] += info.getShortDescriptiveText().isEmpty();
    totals["secondGeneration"] += info.getAttribute("version").toInt() == 2;
}

} // namespace

std::vector<const MessageInfo*> allTypes()
{
    const auto all = TQX_FormatInfo::getInstance()->getAllMessageInfos();
    return {all.begin(), all.end()};
}

std::map<std::string, long> countedTotals()
{
    std::map<std::string, long> totals;
    countLayouts(totals);
    countCodes(totals);
    for (const MessageInfo* info : allTypes())
        countType(*info, totals);
    return totals;
}

Frequencies countedFrequencies()
{
    Frequencies counted;
    for (const MessageInfo* info : allTypes()) {
        for (const FieldInfo* field : info->getFieldInfos()) {
            if (!field->getUnit().isEmpty())
                ++counted.units[field->getUnit().toStdString()];
            if (field->hasScaleFactor())
                ++counted.scales[field->getScaleFactor()];
            if (field->getPrecision() >= 0)
                ++counted.precisions[field->getPrecision()];
            if (field->getType().getKind() == FieldKind::U)
                ++counted.unsignedWidths[field->getType().getWidth()];
            if (field->getType().getKind() == FieldKind::I)
                ++counted.signedWidths[field->getType().getWidth()];
        }
    }
    return counted;
}
