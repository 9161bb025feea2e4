// Finds the antenna from the files alone: with each system, and with all together.

#include "RinexFix.h"
#include "ToolRuns.h"

#include <Eigen/Dense>

#include <gtest/gtest.h>

namespace
{

constexpr double degree = 3.14159265358979323846 / 180;

class RinexFixTest : public testing::TestWithParam<const char*>
{
};

} // namespace

// Five hours and a half across the end of a week.
TEST_P(RinexFixTest, LandsOnTheAntenna)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 20000 --rate 0.01 --start 2404:594800 "
                   "--position=-33.2,151.6,85 -o log.tqx");
    tool.expectRun(std::string("rinex -q log.tqx -o files --rinex ") + GetParam());
    const rinex::ObservationFile file = rinex::readObservations(tool.readOnly("files", "_MO.rnx"));
    const rinex::FixFromRinex solver(rinex::readNavigation(tool.readOnly("files", "_MN.rnx")));
    const Eigen::Vector3d antenna = rinex::placeOnEarth(-33.2 * degree, 151.6 * degree, 85);
    for (const std::string letters : {"G", "R", "E", "C", "GREC"}) {
        SCOPED_TRACE(letters);
        Eigen::Vector3d sum = Eigen::Vector3d::Zero();
        double squares = 0;
        double claimed = 0;
        int count = 0;
        for (const rinex::Epoch& epoch : file.epochs) {
            const auto fix = solver.solve(epoch, letters);
            if (!fix)
                continue;
            const Eigen::Vector3d error = fix->position - antenna;
            sum += error;
            squares += error.squaredNorm();
            claimed += error.dot(fix->covariance.inverse() * error) / 3;
            ++count;
        }
        ASSERT_GE(count, 150);
        EXPECT_NEAR(claimed / count, 1, 0.3);
        EXPECT_LT(std::sqrt(squares / count), letters == "GREC" ? 1.2 : 5);
        EXPECT_LT((sum / count).norm(), letters == "GREC" ? 0.2 : 0.8);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, RinexFixTest, testing::Values("3.05", "4.02"),
                         [](const auto& instance) {
                             return instance.param == std::string("3.05") ? "V305" : "V402";
                         });
