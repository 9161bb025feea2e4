// The civil navigation messages of GPS, QZSS and BeiDou, which no simulation sends: what their
// blocks say, in the units and at the places of the records of RINEX 4.

#include "RinexRules.h"
#include "RinexText.h"
#include "ToolRuns.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <ostream>

using nlohmann::json;

namespace
{

constexpr double pi = 3.1415926535898;
constexpr double gpsAxis = 26559710;
constexpr double qzssAxis = 42164200;
constexpr double mediumAxis = 27906100;
constexpr double highAxis = 42162200;

struct Case {
    const char* block;
    const char* key;          ///< system and message of the record
    const char* shared;       ///< fields of the blocks of its system
    const char* added;        ///< further fields
    double axis;              ///< semi-major axis without its difference
    double rate;              ///< reference of the rate of the node, semicircles per second
    std::vector<double> last; ///< numbers of the record from the 22nd on; NaN for blank
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.block;
}

class CivilNavigationTest : public testing::TestWithParam<Case>
{
};

constexpr double blank = std::numeric_limits<double>::quiet_NaN();

/// What all these blocks have: sums of few powers of two, so that numbers of 32 bits hold them.
const char* const common = R"({"TOW":216030000,"WNc":2400,"t_oe":216000,"t_oc":216300,
"t_op":212400,"a_f0":0.0009765625,"a_f1":-9.313225746154785e-10,"a_f2":2.220446049250313e-16,
"DEL_A":1024.5,"A_DOT":0.015625,"DEL_N":1.4901161193847656e-08,"DEL_N_DOT":-5.684341886080802e-14,
"M_0":0.25,"e":0.0078125,"omega":-0.625,"OMEGA_0":0.3125,"i_0":0.28125,
"IDOT":-1.8189894035458565e-12,"C_is":5.960464477539063e-08,"C_ic":-1.1920928955078125e-07,
"C_rs":-64.5,"C_rc":128.25,"C_us":2.384185791015625e-07,"C_uc":-4.76837158203125e-07})";

/// What those of GPS and QZSS have, and those of BeiDou.
const char* const ofGps = R"({"DEL_OMEGADOT":-3.637978807091713e-12,"URA_ED":-3,"URA_NED0":-5,
"URA_NED1":2,"URA_NED2":6,"T_gd":9.313225746154785e-10,"ISC_L1CA":-4.656612873077393e-10})";
const char* const ofBeiDou = R"({"PRN":165,"OMEGADOT":-3.637978807091713e-12,"SISAI_oe":4,
"SISAI_ocb":5,"SISAI_oc1":6,"SISAI_oc2":7,"SISMAI":8})";

/// The first 21 numbers of each record.
std::vector<double> firstNumbers(const Case& c)
{
    const bool isBeiDou = c.key[0] == 'C';
    const double rate = (c.rate - 3.637978807091713e-12) * pi;
    return {0.0009765625,
            -9.313225746154785e-10,
            2.220446049250313e-16,
            0.015625,
            -64.5,
            1.4901161193847656e-08 * pi,
            0.25 * pi,
            -4.76837158203125e-07,
            0.0078125,
            2.384185791015625e-07,
            std::sqrt(c.axis + 1024.5),
            isBeiDou ? 216000.0 : 212400.0,
            -1.1920928955078125e-07,
            0.3125 * pi,
            5.960464477539063e-08,
            0.28125 * pi,
            128.25,
            -0.625 * pi,
            rate,
            -1.8189894035458565e-12 * pi,
            -5.684341886080802e-14 * pi};
}

std::vector<std::string> publicKeys(std::vector<size_t>& counts)
{
    std::ifstream file(TQX_TESTS_DIR "/data/rinex/navigation_4.00_excerpt.rnx", std::ios::binary);
    std::vector<std::string> keys;
    for (const auto& record :
         rinex::readNavigation({std::istreambuf_iterator<char>(file), {}}).records) {
        keys.push_back(record.satellite[0] + record.message);
        counts.push_back(record.kind == "EPH" ? (record.numbers.size() + 4) / 4 : 0);
    }
    return keys;
}

} // namespace

TEST_P(CivilNavigationTest, IsARecordOfVersion4)
{
    const Case& c = GetParam();
    json fields = json::parse(common);
    fields.update(json::parse(c.shared));
    fields.update(json::parse(c.added));
    if (c.key == std::string("GCNV2"))
        fields.erase("t_oc"); // which is t_oe there
    const ToolRuns tool;
    tool.write("lines", json({{"block", c.block}, {"fields", fields}}).dump() + "\n");
    tool.expectRun("encode lines -o log.tqx");
    tool.run("rinex -q log.tqx -o older --rinex 3.05");
    EXPECT_NE(tool.read("err").find("1 ephemeris of civil messages left out"), std::string::npos);
    EXPECT_EQ(tool.list("older"), std::vector<std::string>());
    tool.expectRun("rinex -q log.tqx -o files --rinex 4.02");
    EXPECT_EQ(tool.read("err").find("civil"), std::string::npos);
    const std::string text = tool.readOnly("files", "_MN.rnx");
    EXPECT_EQ(rinex::faultsOfNavigation(text), std::vector<std::string>());
    const rinex::NavigationFile file = rinex::readNavigation(text);
    ASSERT_EQ(file.records.size(), 1U);
    const rinex::NavigationRecord& record = file.records[0];
    EXPECT_EQ(record.satellite[0] + record.message, c.key);
    const int clock = fields.contains("t_oc") ? 300 : 0;
    EXPECT_EQ(record.seconds, rinex::secondsOf(2026, 1, 6, 12, 0, 0) + clock);

    std::vector<double> expected = firstNumbers(c);
    expected.insert(expected.end(), c.last.begin(), c.last.end());
    ASSERT_GE(expected.size(), record.numbers.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        const bool isThere = i < record.numbers.size() && record.numbers[i];
        EXPECT_EQ(isThere, !std::isnan(expected[i])) << i;
        if (isThere) {
            EXPECT_NEAR(*record.numbers[i], expected[i], 1e-12 * std::fabs(expected[i])) << i;
        }
    }
    std::vector<size_t> lines;
    const std::vector<std::string> keys = publicKeys(lines);
    for (size_t i = 0; i < keys.size(); ++i) {
        if (keys[i] == c.key && lines[i] != 0) {
            EXPECT_EQ((record.numbers.size() + 4) / 4, lines[i]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, CivilNavigationTest,
    testing::Values(
        Case{"GPSCNav",
             "GCNAV",
             ofGps,
             R"({"PRN":5,"WN_OP":95,"L2Unhealthy":1,"health":2,"ISC_L2C":2.3283064365386963e-10,
                 "ISC_L5I5":1.862645149230957e-09,"ISC_L5Q5":3.725290298461914e-09})",
             gpsAxis,
             -2.6e-9,
             {-5, 2, -3, 2, 9.313225746154785e-10, 6, -4.656612873077393e-10,
              2.3283064365386963e-10, 1.862645149230957e-09, 3.725290298461914e-09, 216030, 2399}},
        Case{"QZSCNav",
             "JCNAV",
             ofGps,
             R"({"PRN":183,"WN_OP":96,"ISC_L2C":4.656612873077393e-10,
                 "ISC_L5I5":9.313225746154785e-10,"ISC_L5Q5":7.450580596923828e-09})",
             qzssAxis,
             -2.6e-9,
             {-5, 2, -3, 0, 9.313225746154785e-10, 6, -4.656612873077393e-10, 4.656612873077393e-10,
              9.313225746154785e-10, 7.450580596923828e-09, 216030, 2400}},
        Case{"GPSCNav2",
             "GCNV2",
             ofGps,
             R"({"PRN":5,"WN_OP":96,"t_tm":216018000,"ISC_L1CD":2.3283064365386963e-10,
                 "ISC_L1CP":1.862645149230957e-09})",
             gpsAxis,
             -2.6e-9,
             {-5, 2, -3, 0, 9.313225746154785e-10, 6, -4.656612873077393e-10, blank, blank, blank,
              2.3283064365386963e-10, 1.862645149230957e-09, blank, blank, 216018, 2400}},
        Case{"BDSCNav1",
             "CCNV1",
             ofBeiDou,
             R"({"SatType":3,"IODC":300,"IODE":44,"T_gd_B1Cp":9.313225746154785e-10,
                 "T_gd_B2ap":-4.656612873077393e-10,"ISC_B1Cd":2.3283064365386963e-10})",
             mediumAxis,
             0,
             {3, 212400, 4, 5, 6, 7, 2.3283064365386963e-10, blank, 9.313225746154785e-10,
              -4.656612873077393e-10, 8, 0, 0, 300, 216016, blank, blank, 44}},
        Case{"BDSCNav2",
             "CCNV2",
             ofBeiDou,
             R"({"SatType":2,"IODC":301,"IODE":45,"T_gd_B1Cp":1.862645149230957e-09,
                 "T_gd_B2ap":-2.3283064365386963e-10,"ISC_B2ad":4.656612873077393e-10})",
             highAxis,
             0,
             {2, 212400, 4, 5, 6, 7, blank, 4.656612873077393e-10, 1.862645149230957e-09,
              -2.3283064365386963e-10, 8, 0, 0, 301, 216016, blank, blank, 45}},
        Case{"BDSCNav3",
             "CCNV3",
             ofBeiDou,
             R"({"SatType":3,"T_gd_B2bI":9.313225746154785e-10})",
             mediumAxis,
             0,
             {3, 212400, 4, 5, 6, 7, 8, 0, 0, 9.313225746154785e-10, 216016}}),
    [](const auto& instance) { return std::string(instance.param.block); });
