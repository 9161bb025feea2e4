#include "FieldRoles.h"
#include "RandomBlock.h"
#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using nlohmann::json;

namespace
{

/// The stored values of the only block in a stream.
json storedValues(const std::string& stream)
{
    const ToolRun run = runTool({"dump", "--format", "jsonl", "--raw", "--strict", "-"}, stream);
    EXPECT_EQ(run.status, 0) << run.words;
    const std::vector<std::string> lines = linesOf(run.output);
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? json() : json::parse(lines.front());
}

/// A line that is broken for the reader of this file.
std::string oneLine(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
}

struct Good {
    const char* name;
    const char* line;
    const char* expected; ///< some of the stored values, by JSON pointer
};

void PrintTo(const Good& value, std::ostream* stream)
{
    *stream << value.name;
}

class EncodeGoodLine : public testing::TestWithParam<Good>
{
};

struct Bad {
    const char* name;
    const char* line;
    const char* message;
};

void PrintTo(const Bad& value, std::ostream* stream)
{
    *stream << value.name;
}

class EncodeBadLine : public testing::TestWithParam<Bad>
{
};

} // namespace

TEST_P(EncodeGoodLine, GivesTheBlock)
{
    const ToolRun run = runTool({"encode", "-"}, oneLine(GetParam().line));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words, "");
    const json block = storedValues(run.output);
    EXPECT_FALSE(block.contains("bytes")) << block;
    const json expected = json::parse(GetParam().expected);
    for (const auto& [pointer, value] : expected.items()) {
        const json::json_pointer place(pointer);
        ASSERT_TRUE(block["fields"].contains(place)) << pointer << " in " << block;
        EXPECT_EQ(block["fields"][place], value) << pointer;
        if (value.is_number_float()) {
            EXPECT_EQ(std::signbit(block["fields"][place].get<double>()),
                      std::signbit(value.get<double>()))
                << pointer;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tool, EncodeGoodLine,
    testing::Values(
        Good{"InitialValues", R"({"block":"ASCIIIn","fields":{}})",
             R"({"/ID":4075,"/Length":80,"/TOW":0,"/SensorModel":"                    ",
                 "/StringLn":0,"/ASCIIString":""})"},
        Good{"NoFields", R"({"block":"ASCIIIn"})", R"({"/ID":4075})"},
        Good{"CaseOfTheName", R"({"block":"asciiin"})", R"({"/ID":4075})"},
        Good{"CountOfText", R"({"block":"ASCIIIn","fields":{"ASCIIString":"caf\u00e9"}})",
             R"({"/StringLn":4,"/ASCIIString":"café","/Length":84})"},
        Good{"ShortTextIsFilledWithZeros", R"({"block":"ASCIIIn","fields":{"SensorModel":"X1"}})",
             R"({"/SensorModel":"X1"})"},
        Good{"WordFromBits",
             R"({"block":"ReceiverStatus2","fields":{"Revision":1,"WeekKnown":1,"TOWKnown":1}})",
             R"({"/ID":12206,"/RxState":24})"},
        Good{"WordAndAgreeingBits",
             R"({"block":"ReceiverStatus2","fields":{"RxState":24,"WeekKnown":1}})",
             R"({"/RxState":24})"},
        Good{"NumberAndRevision",
             R"({"block":"PVTGeodetic2","fields":{"BlockNumber":4007,"Revision":1,"NrBases":3}})",
             R"({"/ID":12199,"/NrBases":3,"/Length":88})"},
        Good{"PaddingOfARevision", R"({"block":"PVTGeodetic2","fields":{"_padding0":[1,2,3]}})",
             R"({"/ID":4007,"/_padding0":[1,2,3],"/Length":88})"},
        Good{"CountsAndLengthsOfSubBlocks",
             R"({"block":"MeasEpoch2","fields":{"N1":9,"Type1":[{},{"Type2":[{"CN0":7}]}]}})",
             R"({"/N1":2,"/SB1Length":20,"/SB2Length":12,"/Length":72,"/Type1/0/N2":0,
                 "/Type1/1/N2":1,"/Type1/1/Type2/0/CN0":7})"},
        Good{"LongerSubBlocks",
             R"({"block":"MeasEpoch2","fields":{"SB1Length":24,"Type1":[{"Type2":[{"CN0":7}]}]}})",
             R"({"/SB1Length":24,"/Length":56,"/Type1/0/Type2/0/CN0":7})"},
        Good{"SignedBits",
             R"({"block":"MeasEpoch2","fields":{"Type1":[{"Type2":[
                 {"CodeOffsetMSB":-1,"DopplerOffsetMSB":-16}]}]}})",
             R"({"/Type1/0/Type2/0/OffsetsMSB":135})"},
        Good{"ContentChosenBySelector",
             R"({"block":"DiffCorrIn","fields":{"Mode":0,"RTCM2Words":[1,4294967295]}})",
             R"({"/Data_Byte_Length":8,"/RTCM2Words":[1,4294967295]})"},
        Good{"RepeatedWordFromBits",
             R"({"block":"DiffCorrIn","fields":{"Mode":0,"Parity":[1,2],"Preceding":[3,0]}})",
             R"({"/Data_Byte_Length":8,"/RTCM2Words":[3221225473,2]})"},
        Good{"LengthInsideAnElement",
             R"({"block":"DiffCorrIn","fields":{"Data_Byte_Length":6,"RTCM2Words":[7]}})",
             R"({"/Data_Byte_Length":6,"/RTCM2Words":[7],"/Length":26})"},
        Good{"EmbeddedSubBlock",
             R"({"block":"ExtSensorMeas1","fields":{"ExtSensorMeasSet":[
                 {"Type":0,"Acceleration":{"AccX":1.5}}]}})",
             R"({"/N":1,"/ExtSensorMeasSet/0/Acceleration/AccX":1.5})"},
        Good{"MinusZero",
             R"({"block":"PVTGeodetic2","fields":{"Latitude":-0,"Vn":-0,"NrSV":-0,"Error":-0}})",
             R"({"/Latitude":-0.0,"/Vn":-0.0,"/NrSV":0,"/Error":0})"},
        Good{"Floats",
             R"({"block":"PVTGeodetic2","fields":{"Latitude":-0.0,"Longitude":"-Infinity",
                 "Height":"NaN","Undulation":16777217,"Vn":"Infinity","Ve":-2e10}})",
             R"({"/Latitude":-0.0,"/Longitude":"-Infinity","/Height":"NaN",
                 "/Undulation":16777216,"/Vn":"Infinity","/Ve":-20000000000.0})"}),
    [](const auto& instance) { return instance.param.name; });

TEST_P(EncodeBadLine, IsReportedAndSkipped)
{
    const std::string good = "{\"block\":\"ASCIIIn\"}\n";
    const std::string block = runTool({"encode", "-"}, good).output;
    ASSERT_FALSE(block.empty());
    const ToolRun run = runTool({"encode", "-"}, good + oneLine(GetParam().line) + "\n\n" + good);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, std::string("-:2: ") + GetParam().message + "\n");
    EXPECT_EQ(run.output, block + block);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, EncodeBadLine,
    testing::Values(
        Bad{"NoJson", R"({"block":)", "invalid JSON at column 10"},
        Bad{"NoObject", "[1]", "[...] is not an object"},
        Bad{"NoBlock", "{}", "neither \"block\" nor \"bytes\" is given"},
        Bad{"UnknownMember", R"({"block":"ASCIIIn","field":{}})",
            "there is no member named field, did you mean fields?"},
        Bad{"UnknownBlock", R"({"block":"ASCIIInn"})",
            "there is no type named ASCIIInn, did you mean ASCIIIn?"},
        Bad{"SubBlock", R"({"block":"AGCState"})", "AGCState is a sub-block, not a block"},
        Bad{"UnknownName", R"({"block":"ASCIIIn","fields":{"C":1}})",
            "ASCIIIn: there is no field named C"},
        Bad{"Derived", R"({"block":"ASCIIIn","fields":{"TOWc":1}})",
            "ASCIIIn.TOWc: is computed by decoding and cannot be given"},
        Bad{"TooLarge", R"({"block":"ASCIIIn","fields":{"CD":256}})",
            "ASCIIIn.CD: 256 is out of range, 0 to 255"},
        Bad{"Negative", R"({"block":"ASCIIIn","fields":{"CD":-1}})",
            "ASCIIIn.CD: -1 is out of range, 0 to 255"},
        Bad{"TooLargeForSigned",
            R"({"block":"ReceiverStatus2","fields":{"AGCState":[{},{"Gain":128}]}})",
            "ReceiverStatus2.AGCState[1].Gain: 128 is out of range, -128 to 127"},
        Bad{"TooLargeForFloat", R"({"block":"PVTGeodetic2","fields":{"Vn":1e39}})",
            "PVTGeodetic2.Vn: 1e+39 is out of range, -3.4028235e+38 to 3.4028235e+38"},
        Bad{"Fraction", R"({"block":"ASCIIIn","fields":{"CD":1.5}})",
            "ASCIIIn.CD: 1.5 is not an integer"},
        Bad{"StringForNumber", R"({"block":"ASCIIIn","fields":{"CD":"COM1"}})",
            "ASCIIIn.CD: \"COM1\" is not an integer"},
        Bad{"NumberForText", R"({"block":"ASCIIIn","fields":{"ASCIIString":5}})",
            "ASCIIIn.ASCIIString: 5 is not a string"},
        Bad{"NoLatin1", R"({"block":"ASCIIIn","fields":{"ASCIIString":"\u20ac"}})",
            "ASCIIIn.ASCIIString: a text can only hold characters up to U+00FF"},
        Bad{"TextTooLong",
            R"({"block":"ASCIIIn","fields":{"SensorModel":"123456789012345678901"}})",
            "ASCIIIn.SensorModel: 21 characters, there is room for 20"},
        Bad{"WrongSync", R"({"block":"ASCIIIn","fields":{"Sync1":"x"}})",
            "ASCIIIn: the sync characters are not those of a block"},
        Bad{"OtherNumber", R"({"block":"ASCIIIn","fields":{"ID":4007}})",
            "ASCIIIn: the ID is that of block 4007, not of ASCIIIn (4075)"},
        Bad{"ContradictingBits",
            R"({"block":"ReceiverStatus2","fields":{"RxState":8,"TOWKnown":1}})",
            "ReceiverStatus2.TOWKnown: contradicts RxState"},
        Bad{"WrongSummary", R"({"block":"ReceiverTime","fields":{"WeekKnown":1,"Synchronised":1}})",
            "ReceiverTime.Synchronised: contradicts the bits that it summarises"},
        Bad{"BitsTooLarge", R"({"block":"PVTGeodetic2","fields":{"PVTMode":16}})",
            "PVTGeodetic2.PVTMode: 16 is out of range, 0 to 15"},
        Bad{"NotInThisRevision", R"({"block":"PVTGeodetic2","fields":{"NrBases":1}})",
            "PVTGeodetic2.NrBases: exists only from revision 1 on"},
        Bad{"NotSelected", R"({"block":"DiffCorrIn","fields":{"Mode":1,"RTCM2Words":[]}})",
            "DiffCorrIn.RTCM2Words: exists only when Mode is 0"},
        Bad{"WrongNumberOfElements", R"({"block":"ASCIIIn","fields":{"Reserved1":[1,2]}})",
            "ASCIIIn.Reserved1: 2 elements instead of 3"},
        Bad{"CountWithoutArray", R"({"block":"MeasEpoch2","fields":{"N1":1}})",
            "MeasEpoch2.N1: is not 0, but Type1 is not given"},
        Bad{"NoArray", R"({"block":"MeasEpoch2","fields":{"Type1":{}}})",
            "MeasEpoch2.Type1: {} is not an array"},
        Bad{"BadBase64", R"({"number":1,"bytes":"A==="})", "bytes: is not base64 text"}),
    [](const auto& instance) { return instance.param.name; });

TEST(Encode, BytesGoOutAsTheyAre)
{
    EXPECT_EQ(runTool({"encode", "-"}, R"({"number":7,"bytes":"AAECAw=="})").output,
              std::string("\0\1\2\3", 4));
    EXPECT_EQ(
        runTool({"encode", "-"}, R"({"block":"ASCIIIn","fields":{"CD":1},"bytes":"JEA="})").output,
        "$@");
}

TEST(Encode, NothingIsDroppedAfterANull)
{
    const std::string good = "{\"block\":\"ASCIIIn\"}\n";
    const std::string bad = "{\"block\":\"ASCIIIn\"}" + std::string(1, '\0') + "rest\n";
    const ToolRun run = runTool({"encode", "-"}, good + bad + good);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:2: invalid JSON at column 20: a null character\n");
    EXPECT_EQ(run.output.size(), 160U);
}

TEST(Encode, FieldsThatDifferFromBytesAreReported)
{
    std::vector<std::string> lines =
        rawLines(runTool({"encode", "tool/data/documented.jsonl"}).output);
    json line = json::parse(lines.at(1));
    ASSERT_EQ(line["block"], "MeasEpoch2");
    const std::string block = runTool({"encode", "-"}, lines.at(1)).output;
    line["bytes"] = QByteArray::fromStdString(block).toBase64().toStdString();
    const ToolRun same = runTool({"encode", "-"}, line.dump());
    EXPECT_EQ(same.words, "");
    EXPECT_EQ(same.output, block);

    line["fields"]["Type1"][0]["Type2"][0]["CN0"] = 1;
    const ToolRun other = runTool({"encode", "-"}, line.dump());
    EXPECT_EQ(other.status, 0);
    EXPECT_EQ(other.words, "-:1: differs from the bytes beside it, which are used: Type1\n");
    EXPECT_EQ(other.output, block);

    line.erase("fields");
    line["block"] = "ASCIIIn";
    EXPECT_EQ(runTool({"encode", "-"}, line.dump()).words,
              "-:1: differs from the bytes beside it, which are used: block\n");
}

TEST(Encode, ScaledLinesAreReportedOnce)
{
    const std::string scaled =
        runTool({"dump", "--format", "jsonl", "--type", "4007", "data/samples/random.tqx"}).output;
    ASSERT_GT(linesOf(scaled).size(), 1U);
    const std::string good = "{\"block\":\"ASCIIIn\"}\n";
    const ToolRun run = runTool({"encode", "-"}, scaled + good);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:1: holds scaled values, but only stored ones can be encoded; write "
                         "them with dump --format jsonl --raw\n");
    EXPECT_EQ(run.output.size(), 80U);
}

TEST(Encode, LongLinesAreReportedAndSkipped)
{
    const std::string good = "{\"block\":\"ASCIIIn\"}\n";
    const std::string padded = "{\"block\":\"ASCIIIn\"" + std::string(300000, ' ');
    const ToolRun run =
        runTool({"encode", "--max-line", "300kB", "-"}, padded + "}\n" + good + padded);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:1: longer than 300000 bytes (see --max-line)\n"
                         "-:3: longer than 300000 bytes (see --max-line)\n");
    EXPECT_EQ(run.output.size(), 80U);
    EXPECT_EQ(runTool({"encode", "--max-line", "301kB", "-"}, padded + "}").output.size(), 80U);
}

TEST(Encode, ValuesOfALineAreLimited)
{
    std::string line = R"({"block":"ASCIIIn","fields":{"CD":[0)";
    for (int i = 0; i < 1000000; ++i)
        line += ",0";
    const ToolRun run = runTool({"encode", "-"}, line + "]}}");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:1: more than 1000000 values\n");
}

// Blocks of all types and revisions, a newer one with longer entries among them, and unknown ones.
TEST(Encode, RawDumpOfEveryTypeComesBackByteForByte)
{
    std::mt19937_64 random(11);
    std::string stream;
    size_t blocks = 0;
    for (const auto* type : mainTypes()) {
        for (unsigned revision = 0; revision <= type->highestRevision + 1U; ++revision) {
            const bool isNewer = revision > type->highestRevision;
            const auto block = randomBlock(*type, {revision, 3, isNewer ? 2U : 0U}, random);
            stream.append(block.begin(), block.end());
            ++blocks;
        }
    }
    stream +=
        runTool({"encode", "-"}, R"({"number":8191,"bytes":"JECbZf8fEADQ7d8MYAk0Eg=="})").output;
    const ToolRun dump = runTool({"dump", "--strict", "--format", "jsonl", "--raw", "-"}, stream);
    EXPECT_EQ(dump.status, 0) << dump.words;
    const std::vector<std::string> lines = linesOf(dump.output);
    EXPECT_EQ(lines.size(), blocks + 1);
    const ToolRun encode = runTool({"encode", "-"}, dump.output);
    EXPECT_EQ(encode.words, "");
    EXPECT_TRUE(encode.output == stream);
    // Most come back from their fields alone.
    const auto isFieldsAlone = [](const std::string& line) {
        return line.find("\"bytes\"") == std::string::npos;
    };
    EXPECT_GT(std::count_if(lines.begin(), lines.end(), isFieldsAlone) * 2,
              static_cast<std::ptrdiff_t>(blocks));
}

TEST(Encode, DeepNesting)
{
    constexpr size_t depth = 200000;
    const ToolRun run =
        runTool({"encode", "-"}, R"({"block":"ASCIIIn","fields":{"CD":)" + std::string(depth, '[') +
                                     std::string(depth, ']') + "}}");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:1: ASCIIIn.CD: [...] is not an integer\n");
}

TEST(Encode, EntriesTooShort)
{
    const ToolRun run = runTool({"encode", "-"},
                                R"({"block":"MeasEpoch2","fields":{"SB1Length":16,"Type1":[{}]}})");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    const std::string message = "-:1: MeasEpoch2: these values make a block that does not decode: "
                                "TQX_ERR_MEASEPOCHCHANNELTYPE1_TYPE2_SIZE_UNDERFLOW (";
    EXPECT_EQ(run.words.substr(0, message.size()), message);
}

TEST(Encode, TooManyEntries)
{
    json line = {{"block", "MeasEpoch2"}, {"fields", {{"Type1", json::array()}}}};
    for (int i = 0; i < 256; ++i)
        line["fields"]["Type1"].push_back(json::object());
    const ToolRun run = runTool({"encode", "-"}, line.dump());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.words, "-:1: MeasEpoch2.Type1: 256 elements, there is room for 255\n");
}
