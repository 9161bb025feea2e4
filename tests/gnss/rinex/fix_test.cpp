// Finds the antenna from the files alone: with each system, and with all together.

#include "RinexFix.h"
#include "ToolRuns.h"

#include <Eigen/Dense>

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace
{

constexpr double degree = 3.14159265358979323846 / 180;

/// A system or several, and how well the antenna is found with them.
struct Set {
    const char* letters;
    double deviation; ///< largest root of the mean square, metres
    double bias;      ///< largest mean error, metres
};

struct Case {
    const char* name;
    const char* version;
    const char* log; ///< arguments of simulate
    double latitude, longitude;
    std::vector<Set> sets;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class RinexFixTest : public testing::TestWithParam<Case>
{
};

const std::vector<Set> global = {
    {"G", 5, 0.8}, {"R", 5, 0.8}, {"E", 5, 0.8}, {"C", 5, 0.8}, {"GREC", 1.2, 0.2}};

/// Five hours and a half across the end of a week.
const char* const longLog = "--duration 20000 --rate 0.01 --start 2404:594800";

} // namespace

TEST_P(RinexFixTest, LandsOnTheAntenna)
{
    const ToolRuns tool;
    const Case& c = GetParam();
    tool.expectRun(std::string("simulate -o log.tqx ") + c.log + " --position=" +
                   std::to_string(c.latitude) + "," + std::to_string(c.longitude) + ",85");
    tool.expectRun(std::string("rinex -q log.tqx -o files --rinex ") + c.version);
    const rinex::ObservationFile file = rinex::readObservations(tool.readOnly("files", "_MO.rnx"));
    const rinex::FixFromRinex solver(rinex::readNavigation(tool.readOnly("files", "_MN.rnx")));
    const Eigen::Vector3d antenna =
        rinex::placeOnEarth(c.latitude * degree, c.longitude * degree, 85);
    for (const Set& set : c.sets) {
        SCOPED_TRACE(set.letters);
        Eigen::Vector3d sum = Eigen::Vector3d::Zero();
        double squares = 0;
        double claimed = 0;
        int count = 0;
        for (const rinex::Epoch& epoch : file.epochs) {
            const auto fix = solver.solve(epoch, set.letters);
            if (!fix)
                continue;
            const Eigen::Vector3d error = fix->position - antenna;
            sum += error;
            squares += error.squaredNorm();
            claimed += error.dot(fix->covariance.inverse() * error) / 3;
            ++count;
        }
        ASSERT_GE(count, 150);
        EXPECT_NEAR(claimed / count, 1, 0.35);
        EXPECT_LT(std::sqrt(squares / count), set.deviation);
        EXPECT_LT((sum / count).norm(), set.bias);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, RinexFixTest,
                         testing::Values(Case{"V305", "3.05", longLog, -33.2, 151.6, global},
                                         Case{"V402", "4.02", longLog, -33.2, 151.6, global},
                                         Case{"Qzss",
                                              "3.05",
                                              "--duration 20000 --rate 0.01 --systems qzss",
                                              30,
                                              135,
                                              {{"J", 50, 10}}},
                                         Case{"Navic",
                                              "4.02",
                                              "--duration 20000 --rate 0.01 --systems navic",
                                              13,
                                              80,
                                              {{"I", 20, 3}}},
                                         Case{"AllSystems",
                                              "3.05",
                                              "--duration 20000 --rate 0.01 --systems "
                                              "gps,glonass,galileo,beidou,qzss,navic,sbas",
                                              13,
                                              100,
                                              {{"GRECJIS", 1.2, 0.2}}}),
                         [](const auto& instance) { return instance.param.name; });
