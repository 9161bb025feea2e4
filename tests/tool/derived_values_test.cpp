#include "TemporaryFolder.h"
#include "Tool.h"

#include "TQX_FieldFacts.h"
#include "TQX_codec.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>

// What is derived from a value that is not available is not available either, wherever values are
// shown for people; what is stored stays as it is.

using nlohmann::json;

namespace
{

/// One measurement with nothing missing, and one for each input that is: a further signal of the
/// first satellite, or of a satellite whose own Doppler is missing.
const std::string& epoch()
{
    static const std::string stream = [] {
        const json good = {{"CN0", 100}, {"CodeOffsetLSB", 5}};
        json noCode = good;
        noCode["OffsetsMSB"] = 4; // -4 in three bits
        json noDoppler = good;
        noDoppler["OffsetsMSB"] = 16 << 3; // -16 in five
        json noPhase = good;
        noPhase["CarrierMSB"] = -128;
        json noStrength = good;
        noStrength["CN0"] = 255;
        const json measured = {{"SVID", 5},
                               {"CodeLSB", 100},
                               {"Doppler", 2000000},
                               {"CN0", 100},
                               {"Type2", {good, noCode, noDoppler, noPhase, noStrength}}};
        const json missing = {{"SVID", 6},          {"CodeLSB", 100}, {"Doppler", -2147483648LL},
                              {"CarrierMSB", -128}, {"CN0", 255},     {"Type2", {good}}};
        const json line = {{"block", "MeasEpoch2"}, {"fields", {{"Type1", {measured, missing}}}}};
        const ToolRun run = runTool({"encode", "-"}, line.dump() + '\n');
        EXPECT_EQ(run.words, "");
        return run.output;
    }();
    return stream;
}

const char* const derived[] = {"CN0_dBHz", "DopplerHz", "CodeRange", "CarrierPhase"};

/// Which of the derived values are null, one letter each.
std::string missingIn(const json& measurement)
{
    std::string letters;
    for (const char* name : derived) {
        if (measurement.at(name).is_null())
            letters += name[name[0] == 'C' ? 1 : 0];
    }
    return letters;
}

TEST(DerivedValues, AreNullInJsonWithoutTheirInputs)
{
    const json fields =
        json::parse(runTool({"dump", "-", "--format", "jsonl"}, epoch()).output).at("fields");
    const json& measured = fields.at("Type1").at(0);
    EXPECT_EQ(missingIn(measured), "");
    const char* const expected[] = {"", "oa", "D", "a", "N"};
    for (size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(missingIn(measured.at("Type2").at(i)), expected[i]) << i;
    const json& missing = fields.at("Type1").at(1);
    EXPECT_EQ(missingIn(missing), "NDa");
    EXPECT_EQ(missingIn(missing.at("Type2").at(0)), "D") << "the Doppler above it is missing";
    EXPECT_TRUE(missing.at("Wavelength").is_number());
}

TEST(DerivedValues, AreNamedInTextAndLeftOutOfTables)
{
    const std::string text = runTool({"dump", "-"}, epoch()).output;
    size_t count = 0;
    for (const std::string& line : linesOf(text)) {
        if (std::any_of(std::begin(derived), std::end(derived), [&](const char* name) {
                return line.find(std::string(" ") + name + ' ') != std::string::npos;
            }))
            count += line.find("DoNotUse") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(count, 9U);

    const ToolRun table = runTool({"dump", "-", "--format", "csv", "--type", "MeasEpoch2",
                                   "--field", "Type1.CN0_dBHz,Type1.DopplerHz,Type1.SVID"},
                                  epoch());
    const std::vector<std::string> rows = linesOf(table.output);
    ASSERT_EQ(rows.size(), 3U) << table.words;
    EXPECT_EQ(rows[1].substr(rows[1].find("Z,")), "Z,0,35,200,G05");
    EXPECT_EQ(rows[2].substr(rows[2].find("Z,")), "Z,1,,,G06");
}

TEST(DerivedValues, AreSaidToBeNotAvailableWhereABlockIsExplained)
{
    const TemporaryFolder folder;
    const std::string path = folder.fileName("log");
    runTool({"cut", "-", "-o", QString::fromStdString(path)}, epoch());
    const ToolRun run = runTool({"explain", QString::fromStdString(path) + "@0"});
    size_t count = 0;
    for (const std::string& line : linesOf(run.output)) {
        if (line.find("derived") != std::string::npos)
            count += line.find("not available") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(count, 9U) << run.output;
}

TEST(DerivedValues, PassNoConditionWithoutTheirInputs)
{
    const auto selects = [](const char* condition) {
        return !runTool({"cut", "-", "--where", condition}, epoch()).output.empty();
    };
    EXPECT_TRUE(selects("Type1.CN0_dBHz < 70"));
    EXPECT_FALSE(selects("CN0_dBHz > 70"));
    EXPECT_FALSE(selects("DopplerHz < -10000"));
    EXPECT_TRUE(selects("has DopplerHz"));
}

TEST(DerivedValues, StandAsTheyAreWhereStoredValuesAreShown)
{
    const std::string text = runTool({"dump", "-", "--raw"}, epoch()).output;
    EXPECT_NE(text.find("73.75"), std::string::npos);
    EXPECT_NE(text.find("-214748.3648"), std::string::npos);
    EXPECT_EQ(text.find("DoNotUse"), std::string::npos);
}

TEST(DerivedValues, TheCatalogueNamesTheInputs)
{
    const std::string table = runTool({"types", "MeasEpochChannelType2"}).output;
    EXPECT_NE(table.find("not available when CodeOffsetMSB or CarrierMSB is not"),
              std::string::npos)
        << table;
    const json types = json::parse(runTool({"types", "--json", "MeasEpochChannelType2"}).output);
    const json& fields = types.at(0).at("fields");
    const auto doppler = std::find_if(fields.begin(), fields.end(), [](const json& field) {
        return field.at("name") == "DopplerHz";
    });
    ASSERT_NE(doppler, fields.end());
    EXPECT_EQ(doppler->at("inputs"),
              json({"Doppler of MeasEpochChannelType1", "CarrierFrequency of MeasEpochChannelType1",
                    "CarrierFrequency", "DopplerOffsetMSB"}));
}

TEST(DerivedValues, WithoutAParentInputsOfItAreNotAvailable)
{
    using namespace Kor::MessageApi;
    TQX_MeasEpochChannelType2_s record;
    TQX_init_MeasEpochChannelType2(&record);
    record.CN0 = 100;
    const TQX_TypeLayout& type = *TQX_layout(record.korcg_type);
    const auto isAvailable = [&](const char* name) {
        for (int i = 0; i < type.fieldCount; ++i) {
            if (type.fields[i].name == std::string(name))
                return TQX_hasInputs(TQX_fieldFacts(type.recordType)[i], &record);
        }
        ADD_FAILURE() << name;
        return false;
    };
    EXPECT_TRUE(isAvailable("CN0_dBHz"));
    EXPECT_TRUE(isAvailable("LockTime"));
    EXPECT_FALSE(isAvailable("DopplerHz"));
}

} // namespace

TEST(DerivedValues, AccuraciesAreAtTwiceTheStandardDeviation)
{
    const struct {
        const char* block;
        json variances;
        const char* accuracy;
        double expected;
    } rows[] = {
        {"PosCovCartesian1", {{"Cov_XX", 1}, {"Cov_YY", 4}, {"Cov_ZZ", 4}}, "Accuracy", 6},
        {"VelCovCartesian1", {{"Cov_VxVx", 1}, {"Cov_VyVy", 4}, {"Cov_VzVz", 4}}, "Accuracy", 6},
        {"PosCovGeodetic1", {{"Cov_NN", 9}, {"Cov_EE", 16}}, "HAccuracy", 10},
        {"PosCovGeodetic1", {{"Cov_UU", 4}}, "VAccuracy", 4},
        {"IntPosCovCart1", {{"Cov_XX", 1}, {"Cov_YY", 4}, {"Cov_ZZ", 4}}, "PosStdDev", 3},
    };
    for (const auto& row : rows) {
        const json line = {{"block", row.block}, {"fields", row.variances}};
        const ToolRun encoded = runTool({"encode", "-"}, line.dump() + '\n');
        const ToolRun shown = runTool({"dump", "-", "--format", "jsonl"}, encoded.output);
        EXPECT_EQ(json::parse(shown.output).at("fields").at(row.accuracy), row.expected)
            << row.block;
    }
}
