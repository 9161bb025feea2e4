#include "GeneratorTesting.h"

#include <gtest/gtest.h>

using namespace korcg::generator;

namespace
{

/// Codes that users of the format know by heart; no change to the description may move them.
TEST(TqxDescription, KeepsTheKnownCodes)
{
    Errors errors;
    const Format format = load(readSources(TQX_DESCRIPTION_DIRECTORY, errors), errors);
    for (const std::string& line : errors.report())
        ADD_FAILURE() << line;

    struct Row {
        int code;
        const char* name;
    };
    const Row rows[] = {
        {-1, "INVALID_CRC"},
        {-2, "CHANNELSTATEINFO_ANTENNA_EXT_BUFFER_OVERFLOW"},
        {-6, "CHANNELSTATEINFO_PVTINFO_EXT_BUFFER_OVERFLOW"},
        {-7, "CHANNELSTATEINFO_PVTINFO_SIZE_UNDERFLOW"},
        {-8, "CHANNELSTATEINFO_INTERNAL"},
        {-151, "BUFFER_OVERFLOW"},
        {-1826, "PVTGEODETIC2_SYNC1_EXT_BUFFER_OVERFLOW"},
        {-1832, "PVTGEODETIC2_WNC_EXT_BUFFER_OVERFLOW"},
        {-1833, "PVTGEODETIC2_MODE_EXT_BUFFER_OVERFLOW"},
        {-1858, "PVTGEODETIC2_MISC_EXT_BUFFER_OVERFLOW"},
        {-1859, "PVTGEODETIC2_PADDING0_EXT_BUFFER_OVERFLOW"},
        {-1860, "PVTGEODETIC2_PADDING2_EXT_BUFFER_OVERFLOW"},
        {-1861, "PVTGEODETIC2_PADDING2_SIZE_UNDERFLOW"},
        {-1862, "PVTGEODETIC2_INTERNAL"},
        {-1863, "PVTGEODETIC2_CRC_CHECKSUM"},
        {-4215, "ASCIIIN_SYNC1_EXT_BUFFER_OVERFLOW"},
        {-4222, "ASCIIIN_CD_EXT_BUFFER_OVERFLOW"},
        {-4228, "ASCIIIN_ASCIISTRING_EXT_BUFFER_OVERFLOW"},
        {-4229, "ASCIIIN_ASCIISTRING_INT_BUFFER_OVERFLOW"},
        {-4230, "ASCIIIN_ASCIISTRING_SIZE_UNDERFLOW"},
        {-4231, "ASCIIIN_INTERNAL"},
        {-4232, "ASCIIIN_CRC_CHECKSUM"},
        {-5647, "MEASEPOCH2_SYNC1_EXT_BUFFER_OVERFLOW"},
        {-5654, "MEASEPOCH2_N1_EXT_BUFFER_OVERFLOW"},
        {-5660, "MEASEPOCH2_TYPE1_SIZE_UNDERFLOW"},
        {-5661, "MEASEPOCH2_INTERNAL"},
        {-5662, "MEASEPOCH2_CRC_CHECKSUM"},
        {-5829, "OSNMAKEY_DISABLED"},
        {-5904, "PVTGEODETIC2_DISABLED"},
        {-6060, "MEASEPOCH2_DISABLED"},
        {-6071, "LOGSTATUS_DISABLED"},
        {-6072, "INVALID_MESSAGE"},
        {-6073, "EOF"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(std::string("TQX_ERR_") + row.name, codeName(format, row.code)) << row.code;
}

TEST(TqxDescription, PlacesFieldsOfAllRevisions)
{
    Errors errors;
    const Format format = load(readSources(TQX_DESCRIPTION_DIRECTORY, errors), errors);
    struct Row {
        const char* type;
        const char* field;
        int offset;
    };
    const Row rows[] = {{"PVTGeodetic2", "NrBases", 85},   {"PVTGeodetic2", "Misc", 94},
                        {"PVTGeodetic2", "_padding0", 85}, {"PVTGeodetic2", "_padding2", 95},
                        {"MeasEpoch2", "Type1", 20},       {"ASCIIIn", "ASCIIString", 80},
                        {"GPSNav", "WNt_oe", 138},         {"ReceiverStatus2", "AGCState", 32}};
    for (const Row& row : rows) {
        const RecordType* type = format.find(row.type);
        ASSERT_NE(nullptr, type) << row.type;
        const Field* field = findField(*type, row.field);
        ASSERT_NE(nullptr, field);
        EXPECT_EQ(row.offset, field->wireOffset) << row.type << '.' << row.field;
    }
}

} // namespace
