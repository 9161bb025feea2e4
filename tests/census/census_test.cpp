// The figures of the whole format: what the registry and the codec hold against the census.

#include "Figures.h"

#include "FieldInfo.h"
#include "MessageInfo.h"
#include "PathExpression.h"
#include "TQX_FieldInfo.h"
#include "TQX_FormatInfo.h"
#include "TQX_codec.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace
{

using nlohmann::json;

const json& census()
{
    static const json data = json::parse(std::ifstream(TQX_CENSUS));
    return data;
}

TEST(Census, Totals)
{
    std::map<std::string, long> counted = countedTotals();
    for (const auto& [name, expected] : census()["totals"].items())
        EXPECT_EQ(counted[name], expected.get<long>()) << name;
}

TEST(Census, CatalogueInRegistrationOrder)
{
    std::map<int, json> rows;
    for (const json& row : census()["recordTypes"]) {
        if (row.contains("registration"))
            rows[row["registration"]] = row;
    }
    const std::vector<const MessageInfo*> types = allTypes();
    ASSERT_EQ(types.size(), rows.size());
    for (const auto& [position, row] : rows) {
        const MessageInfo& info = *types[static_cast<size_t>(position) - 1];
        SCOPED_TRACE(row["name"].get<std::string>());
        EXPECT_EQ(info.getName().toStdString(), row["name"]);
        ASSERT_EQ(info.isMain(), row.contains("block"));
        if (!info.isMain()) {
            EXPECT_TRUE(info.getAttributes().isEmpty());
            continue;
        }
        EXPECT_EQ(info.getAttribute("blocknr").toInt(), row["block"].get<int>());
        EXPECT_EQ(info.getAttribute("version").toInt(), row["version"].get<int>());
        EXPECT_EQ(info.getAttribute("flexrate").toBool(), row["flexrate"].get<bool>());
        EXPECT_EQ(info.getAttribute("esoc").toBool(), row["esoc"].get<bool>());
        EXPECT_EQ(info.getAttribute("timestamp").toInt(),
                  row["timestamp"].get<std::string>().front());
        EXPECT_EQ(info.getShortDescriptiveText().toStdString(),
                  row["text"].is_string() ? row["text"].get<std::string>() : "");
        EXPECT_EQ(TQX_recordType(static_cast<uint16_t>(row["block"].get<int>())),
                  row["number"].get<uint32_t>());
    }
}

TEST(Census, CodesAndEnableBits)
{
    int32_t code = census()["disabledCodes"]["first"];
    for (const json& number : census()["testOrder"]) {
        const auto* type = TQX_layout(TQX_recordType(number.get<uint16_t>()));
        ASSERT_NE(type, nullptr) << number;
        EXPECT_EQ(type->disabled, code--) << type->name;
    }
    for (const json& run : census()["errorRuns"]) {
        const auto* first = TQX_layout(run["types"][0].get<uint32_t>());
        const auto* last = TQX_layout(run["types"][1].get<uint32_t>());
        EXPECT_EQ(first->fields[0].code, run["codes"][0].get<int32_t>()) << first->name;
        EXPECT_EQ(last->crcChecksum != 0 ? last->crcChecksum : last->internal,
                  run["codes"][1].get<int32_t>())
            << last->name;
    }
    for (const json& anchor : census()["errorNames"])
        EXPECT_EQ(TQX_errorName(anchor[0].get<int32_t>()), anchor[1].get<std::string>());
    Kor::MessageApi::TQX_Context_s context;
    TQX_init_context(&context);
    std::string mask;
    for (const uint8_t byte : context.enableMask) {
        for (const int nibble : {byte >> 4, byte & 0xf})
            mask += "0123456789abcdef"[nibble];
    }
    EXPECT_EQ(mask, census()["enableMask"]);
}

// Listed most frequent first: each in use, none more often than the one before.
template<typename Key>
void expectFalling(const json& listed, const std::map<Key, long>& counted)
{
    EXPECT_EQ(counted.size(), listed.size());
    long before = std::numeric_limits<long>::max();
    for (const json& key : listed) {
        const auto found = counted.find(key.get<Key>());
        ASSERT_NE(found, counted.end()) << key;
        EXPECT_LE(found->second, before) << key;
        before = found->second;
    }
}

template<typename Key>
void expectInUse(const json& listed, const std::map<Key, long>& counted)
{
    EXPECT_EQ(counted.size(), listed.size());
    for (const json& key : listed)
        EXPECT_EQ(counted.count(key.get<Key>()), 1U) << key;
}

TEST(Census, Vocabularies)
{
    const Frequencies counted = countedFrequencies();
    expectFalling(census()["units"], counted.units);
    expectFalling(census()["precisions"], counted.precisions);
    expectInUse(census()["scales"], counted.scales);
    expectInUse(census()["unsignedWidths"], counted.unsignedWidths);
    expectInUse(census()["signedWidths"], counted.signedWidths);
}

/// Every field of that name, bit ranges included.
std::vector<const FieldInfo*> fieldsNamed(const QString& name)
{
    std::vector<const FieldInfo*> fields;
    for (const MessageInfo* info : allTypes()) {
        if (const FieldInfo* field = info->getFieldInfo(name))
            fields.push_back(field);
    }
    return fields;
}

TEST(Census, RolesByName)
{
    const struct {
        const char* name;
        FieldInfo::Role role;
    } rows[] = {
        {"AlertFlag", FieldInfo::Structure},  {"PPPInfo", FieldInfo::Structure},
        {"WACorrInfo", FieldInfo::Structure}, {"BF1", FieldInfo::Structure},
        {"Flags", FieldInfo::Structure},      {"CarrierLSB", FieldInfo::Structure},
        {"CarrierMSB", FieldInfo::Structure}, {"DiskUsageLSB", FieldInfo::Structure},
        {"Reserved", FieldInfo::Reserved},    {"ReservedId", FieldInfo::Reserved},
    };
    for (const auto& row : rows) {
        const auto fields = fieldsNamed(row.name);
        EXPECT_FALSE(fields.empty()) << row.name;
        for (const FieldInfo* field : fields)
            EXPECT_EQ(field->getRole(), row.role) << row.name;
    }
    EXPECT_EQ(fieldsNamed("ReservedId").size(), 1U);
}

TEST(Census, PrecisionsByName)
{
    for (const char* name : {"Latitude", "Longitude", "C_ic", "IDOT", "OMEGADOT", "a_f0", "T_gd"}) {
        const auto fields = fieldsNamed(name);
        EXPECT_FALSE(fields.empty()) << name;
        for (const FieldInfo* field : fields) {
            if (field->getType().getKind() == FieldKind::F32 ||
                field->getType().getKind() == FieldKind::F64) {
                EXPECT_EQ(field->getPrecision(), 12) << name;
            }
        }
    }
}

TEST(Census, SubBlocksAndIdentifyingFields)
{
    std::map<std::string, std::vector<std::pair<std::string, bool>>> owned;
    for (const json& row : census()["subBlocks"])
        owned[row["owner"]].emplace_back(row["type"], row["embedded"]);
    for (const MessageInfo* info : allTypes()) {
        std::vector<std::pair<std::string, bool>> found;
        for (const FieldInfo* field : info->getFieldInfos()) {
            if (const MessageInfo* sub = field->getType().getSubMessageInfo())
                found.emplace_back(sub->getName().toStdString(), !field->isRepeated());
        }
        EXPECT_EQ(found, owned[info->getName().toStdString()]) << info->getName().toStdString();
    }
    for (const auto& [name, positions] : census()["identifyingFields"].items()) {
        const MessageInfo* info =
            TQX_FormatInfo::getInstance()->getMessageInfo(QString::fromStdString(name));
        ASSERT_NE(info, nullptr) << name;
        for (int i = 0; i < info->getFieldInfos().size(); ++i) {
            EXPECT_EQ(info->isIdentifying(i),
                      std::find(positions.begin(), positions.end(), i) != positions.end())
                << name << " " << i;
        }
    }
}

/// The fields that a block has after its header, without the bit ranges of words.
std::vector<const TQX_FieldInfo*> storedFields(const MessageInfo& info)
{
    std::vector<const TQX_FieldInfo*> stored;
    for (const FieldInfo* field : info.getFieldInfos().mid(info.isMain() ? 10 : 0)) {
        const auto* known = static_cast<const TQX_FieldInfo*>(field);
        if (known->layout().parent < 0 && !field->isVirtual())
            stored.push_back(known);
    }
    return stored;
}

void expectStored(const json& row, const TQX_FieldInfo& field)
{
    const std::string type = row["type"];
    const std::string element = type.substr(0, type.find('['));
    const MessageInfo* sub = field.getType().getSubMessageInfo();
    EXPECT_EQ(field.getName().toStdString(), row["name"]);
    EXPECT_EQ((sub ? sub->getName() : field.getType().toString()).toStdString(),
              element == "char" ? "ch" : element);
    EXPECT_EQ(field.isRepeated(), element != type);
    EXPECT_EQ(field.layout().wireOffset, row["offset"].get<int>());
    const auto& parts = field.getSubFieldInfos();
    if (row.contains("subFields")) {
        EXPECT_EQ(parts.size(), row["subFields"].get<int>());
    }
    if (row.contains("widths")) {
        json widths = json::array();
        for (const FieldInfo* part : parts)
            widths.push_back(part->getType().getWidth());
        EXPECT_EQ(widths, row["widths"]);
    }
}

TEST(Census, Layouts)
{
    for (const auto& [name, rows] : census()["layouts"].items()) {
        const MessageInfo* info =
            TQX_FormatInfo::getInstance()->getMessageInfo(QString::fromStdString(name));
        ASSERT_NE(info, nullptr) << name;
        const auto stored = storedFields(*info);
        ASSERT_EQ(stored.size(), rows.size()) << name;
        for (size_t i = 0; i < stored.size(); ++i) {
            SCOPED_TRACE(name + " " + rows[i]["name"].get<std::string>());
            expectStored(rows[i], *stored[i]);
        }
    }
}

TEST(Census, NamedValues)
{
    const std::pair<const char*, const char*> tables[] = {
        {"svid", "TQX:GPSNav:PRN"},
        {"connection", "TQX:ASCIIIn:CD"},
        {"front_end", "TQX:AGCState:FrontEnd Code"},
        {"antenna", "TQX:AGCState:AntennaID"},
        {"no_yes", "TQX:ReceiverStatus2:SISError"},
    };
    TQX_FormatInfo::getInstance();
    for (const auto& [table, path] : tables) {
        const FieldInfo* field = PathExpression::getUniqueFieldInfo(path);
        ASSERT_NE(field, nullptr) << path;
        json named = json::array();
        for (const auto& symbol : field->getSymbolicValues())
            named.push_back({symbol.value.getU64(), symbol.name.toStdString()});
        if (field->hasDoNotUseValue())
            named.erase(named.size() - 1);
        EXPECT_EQ(named, census()["namedValues"][table]) << path;
    }
}

} // namespace
