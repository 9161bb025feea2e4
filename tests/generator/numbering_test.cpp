#include "GeneratorTesting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using namespace korcg::generator;

namespace
{

TEST(Numbering, RunsFollowRecordNumbersAndTheRulesOfEachRun)
{
    const std::vector<std::string> expected = {
        "INVALID_CRC",
        "GROWING_SYNC1_EXT_BUFFER_OVERFLOW",
        "GROWING_SYNC2_EXT_BUFFER_OVERFLOW",
        "GROWING_CRC_EXT_BUFFER_OVERFLOW",
        "GROWING_ID_EXT_BUFFER_OVERFLOW",
        "GROWING_LENGTH_EXT_BUFFER_OVERFLOW",
        "GROWING_TOW_EXT_BUFFER_OVERFLOW",
        "GROWING_WNC_EXT_BUFFER_OVERFLOW",
        "GROWING_FIRST_EXT_BUFFER_OVERFLOW",
        "GROWING_JUMPS_EXT_BUFFER_OVERFLOW",
        "GROWING_RESERVED1_EXT_BUFFER_OVERFLOW",
        "GROWING_SECOND_EXT_BUFFER_OVERFLOW",
        "GROWING_THIRD_EXT_BUFFER_OVERFLOW",
        "GROWING_PADDING0_EXT_BUFFER_OVERFLOW",
        "GROWING_PADDING1_EXT_BUFFER_OVERFLOW",
        "GROWING_PADDING2_EXT_BUFFER_OVERFLOW",
        "GROWING_PADDING2_SIZE_UNDERFLOW",
        "GROWING_INTERNAL",
        "GROWING_CRC_CHECKSUM",
        "NOTE2_X_EXT_BUFFER_OVERFLOW",
        "NOTE2_X_SIZE_UNDERFLOW",
        "NOTE2_INTERNAL",
        "SHORT_X_EXT_BUFFER_OVERFLOW",
        "SHORT_X_SIZE_UNDERFLOW",
        "SHORT_INTERNAL",
        "LONG_X_EXT_BUFFER_OVERFLOW",
        "LONG_X_SIZE_UNDERFLOW",
        "LONG_INTERNAL",
        "PAYLOAD_SYNC1_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_SYNC2_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_CRC_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_ID_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_LENGTH_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_TOW_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_WNC_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_MODE_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_SIZE_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_WORDS_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_WORDS_INT_BUFFER_OVERFLOW",
        "PAYLOAD_BYTES_EXT_BUFFER_OVERFLOW", // 255 bytes always have room
        "PAYLOAD_TRAILER_EXT_BUFFER_OVERFLOW",
        "PAYLOAD_TRAILER_SIZE_UNDERFLOW",
        "PAYLOAD_INTERNAL",
        "PAYLOAD_CRC_CHECKSUM",
        "BUFFER_OVERFLOW",
        "NOTE_TEXT_EXT_BUFFER_OVERFLOW",
        "NOTE_TEXT_SIZE_UNDERFLOW",
        "NOTE_INTERNAL",
        "CELL_ROW_NUMBER_EXT_BUFFER_OVERFLOW",
        "CELL_M_EXT_BUFFER_OVERFLOW",
        "CELL_NOTES_SIZE_UNDERFLOW",
        "CELL_M_SIZE_UNDERFLOW",
        "CELL_INTERNAL",
        "CARRIER_SYNC1_EXT_BUFFER_OVERFLOW",
        "CARRIER_SYNC2_EXT_BUFFER_OVERFLOW",
        "CARRIER_CRC_EXT_BUFFER_OVERFLOW",
        "CARRIER_ID_EXT_BUFFER_OVERFLOW",
        "CARRIER_LENGTH_EXT_BUFFER_OVERFLOW",
        "CARRIER_TOW_EXT_BUFFER_OVERFLOW",
        "CARRIER_WNC_EXT_BUFFER_OVERFLOW",
        "CARRIER_FLAGS_EXT_BUFFER_OVERFLOW",
        "CARRIER_LONG_SIZE_UNDERFLOW",
        "CARRIER_INTERNAL",
        "CARRIER_CRC_CHECKSUM",
        "GRID_SYNC1_EXT_BUFFER_OVERFLOW",
        "GRID_SYNC2_EXT_BUFFER_OVERFLOW",
        "GRID_CRC_EXT_BUFFER_OVERFLOW",
        "GRID_ID_EXT_BUFFER_OVERFLOW",
        "GRID_LENGTH_EXT_BUFFER_OVERFLOW",
        "GRID_TOW_EXT_BUFFER_OVERFLOW",
        "GRID_WNC_EXT_BUFFER_OVERFLOW",
        "GRID_N1_EXT_BUFFER_OVERFLOW",
        "GRID_SB1LENGTH_EXT_BUFFER_OVERFLOW",
        "GRID_N2_EXT_BUFFER_OVERFLOW",
        "GRID_SB2LENGTH_EXT_BUFFER_OVERFLOW",
        "GRID_NOTES_SIZE_UNDERFLOW",
        "GRID_INTERNAL",
        "GRID_CRC_CHECKSUM",
        "GROWING_DISABLED",
        "PAYLOAD_DISABLED",
        "CARRIER_DISABLED",
        "GRID_DISABLED",
        "INVALID_MESSAGE",
        "EOF",
    };
    const Format& format = synthetic();
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ("TQX_ERR_" + expected[i], codeName(format, -1 - static_cast<int>(i)));
    EXPECT_EQ(expected.size(), format.codeNames.size());
}

/// Every code that the model holds must be the one whose name says so.
TEST(Numbering, FieldsAndTypesHoldTheirCodes)
{
    const Format& format = synthetic();
    for (const RecordType& type : format.types) {
        for (const Field& field : type.fields) {
            EXPECT_EQ(field.hasCode(), field.code != 0) << type.name << '.' << field.name;
            if (field.code != 0) {
                EXPECT_NE(std::string::npos, codeName(format, field.code).find("_EXT_"));
            }
            if (field.capacityCode != 0) {
                EXPECT_NE(std::string::npos, codeName(format, field.capacityCode).find("_INT_"));
            }
        }
        EXPECT_NE(std::string::npos, codeName(format, type.sizeUnderflow).find("_SIZE_UNDERFLOW"));
        EXPECT_NE(std::string::npos, codeName(format, type.internal).find("_INTERNAL"));
        EXPECT_EQ(type.isMain(), type.crcChecksum != 0);
        EXPECT_EQ(type.isMain(), type.disabled != 0);
        if (type.isMain()) {
            EXPECT_NE(std::string::npos, codeName(format, type.crcChecksum).find("_CRC_CHECKSUM"));
            EXPECT_NE(std::string::npos, codeName(format, type.disabled).find("_DISABLED"));
        }
    }
}

TEST(Numbering, OffsetsFollowRevisionsAndAlternatives)
{
    struct Row {
        const char* type;
        const char* field;
        int offset;
    };
    const Row rows[] = {
        {"Growing", "Sync1", 0},      {"Growing", "ID", 4},         {"Growing", "Revision", 4},
        {"Growing", "WNc", 12},       {"Growing", "TOWc", -1},      {"Growing", "First", 14},
        {"Growing", "Jumps", 16},     {"Growing", "Reserved1", 17}, {"Growing", "Second", 18},
        {"Growing", "Bit", 18},       {"Growing", "Double", -1},    {"Growing", "Third", 19},
        {"Growing", "_padding0", 18}, {"Growing", "_padding1", 19}, {"Growing", "_padding2", 21},
        {"Payload", "Words", 16},     {"Payload", "Bytes", 16},     {"Payload", "Trailer", -1},
        {"Carrier", "Short", 16},     {"Carrier", "Long", 16},      {"Grid", "Cells", 18},
        {"Grid", "Notes", -1},        {"Cell", "Row Number", 0},    {"Cell", "Notes", 2},
    };
    for (const Row& row : rows) {
        const Field* field = findField(*synthetic().find(row.type), row.field);
        EXPECT_EQ(row.offset, field->wireOffset) << row.type << '.' << row.field;
    }
}

TEST(Linking, TypesKnowTheirPlace)
{
    struct Row {
        const char* type;
        int level;
        int linksToMain;
        int registration;
        std::size_t owners;
        int highestRevision;
    };
    const Row rows[] = {{"Grid", 2, 0, 1, 0, 0},    {"Cell", 1, 1, 2, 1, 0},
                        {"Note", 0, 1, 3, 1, 0},    {"Note2", 0, 2, 0, 1, 0},
                        {"Carrier", 1, 0, 4, 0, 1}, {"Long", 0, 1, 6, 1, 1},
                        {"Growing", 0, 0, 8, 0, 2}};
    for (const Row& row : rows) {
        const RecordType& type = *synthetic().find(row.type);
        EXPECT_EQ(row.level, type.level) << row.type;
        EXPECT_EQ(row.linksToMain, type.linksToMain) << row.type;
        EXPECT_EQ(row.registration, type.registration) << row.type;
        EXPECT_EQ(row.owners, type.owners.size()) << row.type;
        EXPECT_EQ(row.highestRevision, type.highestRevision) << row.type;
    }
}

} // namespace
