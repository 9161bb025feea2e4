// Finds the antenna from the decoded log of a simulated receiver, as a user of its blocks would:
// navigation messages, pseudo-ranges and Dopplers in, position and velocity out.

#include "Fix.h"
#include "Tool.h"

#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_FormatInfo.h"
#include "TQX_GPSIon_Message.h"
#include "TQX_MeasEpoch2_Message.h"
#include "TQX_PVTCartesian2_Message.h"
#include "TQX_PVTResiduals2_Message.h"
#include "TQX_PosCovCartesian1_Message.h"
#include "TQX_ResidualInfoCode_Message.h"

#include <Eigen/Dense>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>

using Eigen::Vector3d;

namespace
{

constexpr double pi = 3.14159265358979323846;
constexpr double degree = pi / 180;
constexpr unsigned allSystems = 15;

/// Passes the messages of a simulated log on.
void decode(const QStringList& options, const std::function<void(const Message&)>& receive)
{
    const ToolRun run = runTool(QStringList{"simulate"} + options);
    ASSERT_EQ(run.status, 0) << run.words;
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    QObject::connect(&decoder, &TQXDecoder::newMessage,
                     [&receive](const Message* message) { receive(*message); });
    TQXSynchronizer synchroniser;
    QByteArray bytes = QByteArray::fromStdString(run.output);
    synchroniser.appendBytes(bytes);
    while (synchroniser.hasBlock()) {
        const QByteArray block = synchroniser.getBlockBytes();
        decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                              static_cast<uint32_t>(block.size()));
    }
}

/// Passes the measurements of a log on, with what the navigation messages have said before.
void eachEpoch(const QStringList& options,
               const std::function<void(const Ephemerides&, const TQX_MeasEpoch2_Message&)>& use)
{
    Ephemerides ephemerides;
    decode(options, [&](const Message& message) {
        ephemerides.take(message);
        if (const auto* epoch = dynamic_cast<const TQX_MeasEpoch2_Message*>(&message))
            use(ephemerides, *epoch);
    });
}

/// How errors compare with the deviations that are claimed for them.
struct Scatter {
    void add(const Vector3d& error, const Eigen::Matrix3d& covariance)
    {
        const double square = error.dot(covariance.inverse() * error) / 3;
        worst = std::max(worst, square);
        squares += square;
        sum += error;
        length += error.squaredNorm();
        ++count;
    }

    double bias() const { return (sum / count).norm(); }
    double deviation() const { return std::sqrt(length / count); }

    void expectAsClaimed(int epochs) const
    {
        EXPECT_GE(count, epochs);
        EXPECT_NEAR(squares / count, 1, 0.3);
        EXPECT_LT(worst, 9);
    }

    double worst = 0, squares = 0, length = 0;
    Vector3d sum = Vector3d::Zero();
    int count = 0;
};

/// Metres by which the ionosphere delays a code of 1575.42 MHz (IS-GPS-200, 20.3.3.5.2.5).
struct Ionosphere {
    void take(const Message& message)
    {
        if (const auto* ionosphere = dynamic_cast<const TQX_GPSIon_Message*>(&message)) {
            alpha = {ionosphere->getalpha_0(), ionosphere->getalpha_1(), ionosphere->getalpha_2(),
                     ionosphere->getalpha_3()};
            beta = {ionosphere->getbeta_0(), ionosphere->getbeta_1(), ionosphere->getbeta_2(),
                    ionosphere->getbeta_3()};
        }
    }

    double delay(const Place& place, const Vector3d& line, double tow) const
    {
        const Vector3d up = place.up();
        const Vector3d east = Vector3d::UnitZ().cross(up).normalized();
        const double elevation = std::asin(line.normalized().dot(up)) / pi;
        const double azimuth = std::atan2(line.dot(east), line.dot(up.cross(east)));
        const double psi = 0.0137 / (elevation + 0.11) - 0.022;
        const double latitude =
            std::clamp(place.latitude / pi + psi * std::cos(azimuth), -0.416, 0.416);
        const double longitude =
            place.longitude / pi + psi * std::sin(azimuth) / std::cos(latitude * pi);
        const double m = latitude + 0.064 * std::cos((longitude - 1.617) * pi);
        const Eigen::Vector4d powers(1, m, m * m, m * m * m);
        const double local = std::fmod(4.32e4 * longitude + tow + 86400, 86400);
        const double x = 2 * pi * (local - 50400) / std::max(beta.dot(powers), 72000.0);
        const double day = std::max(alpha.dot(powers), 0.0) * (1 - x * x / 2 + x * x * x * x / 24);
        return lightSpeed * (1 + 16 * std::pow(0.53 - elevation, 3)) *
               (5e-9 + (std::fabs(x) < 1.57 ? day : 0));
    }

    Eigen::Vector4d alpha, beta;
};

const Place home = {-33.2 * degree, 151.6 * degree, 85};
const char* const homeText = "-33.2,151.6,85";

} // namespace

// Five hours and a half across the end of a week, with many ephemerides of all systems.
TEST(Fix, LandsOnTheAntennaWithEachSystemAndWithAll)
{
    std::map<unsigned, Scatter> scatters;
    eachEpoch(
        {"--duration", "20000", "--rate", "0.01", "--start", "2404:594800", "--position", homeText},
        [&](const Ephemerides& known, const TQX_MeasEpoch2_Message& epoch) {
            Solver solver(known, epoch.getTOW() * 1e-3);
            for (const unsigned systems : {1U, 2U, 4U, 8U, allSystems}) {
                const Fix fix = solver.solve(trackedIn(epoch), systems);
                if (fix.redundancy != 0)
                    scatters[systems].add(fix.position - positionOf(home), fix.covariance);
            }
        });
    ASSERT_EQ(scatters.size(), 5U);
    for (const auto& [systems, scatter] : scatters) {
        SCOPED_TRACE(systems);
        scatter.expectAsClaimed(195);
        EXPECT_LT(scatter.deviation(), systems == allSystems ? 1.2 : 5);
        EXPECT_LT(scatter.bias(), systems == allSystems ? 0.2 : 0.8);
    }
}

// Group delays, ionosphere and the offsets of second-type entries: what fixes make no use of.
TEST(Fix, ExplainsEverySignal)
{
    Ephemerides known;
    Ionosphere ionosphere;
    struct Errors {
        double squares = 0, worstRate = 0;
        int count = 0;
    };
    std::map<int, Errors> bySignal;
    decode({"--duration", "3600", "--rate", "0.01", "--position", homeText},
           [&](const Message& message) {
               known.take(message);
               ionosphere.take(message);
               const auto* epoch = dynamic_cast<const TQX_MeasEpoch2_Message*>(&message);
               if (!epoch)
                   return;
               const double tow = epoch->getTOW() * 1e-3;
               Solver solver(known, tow);
               const std::vector<Tracked> satellites = trackedIn(*epoch);
               const Fix fix = solver.solve(satellites, allSystems);
               if (fix.redundancy == 0)
                   return;
               for (const Tracked& satellite : satellites) {
                   if (!known.position(satellite.svid, tow))
                       continue;
                   for (const Range& range : satellite.ranges) {
                       const auto left = solver.unexplained(satellite, range, fix);
                       const double ratio = 1575.42e6 / range.frequency;
                       const double error =
                           (left.metres - ratio * ratio * ionosphere.delay(home, left.line, tow)) *
                           left.sinElevation;
                       Errors& errors = bySignal[range.signal];
                       errors.squares += error * error;
                       errors.worstRate = std::max(
                           errors.worstRate,
                           std::fabs(range.rate - satellite.ranges[0].rate) * left.sinElevation);
                       ++errors.count;
                   }
               }
           });
    EXPECT_EQ(bySignal.size(), 11U);
    for (const auto& [signal, errors] : bySignal) {
        SCOPED_TRACE(signal);
        EXPECT_GT(errors.count, 100);
        EXPECT_LT(std::sqrt(errors.squares / errors.count), 0.65);
        EXPECT_LT(errors.worstRate, 0.05);
    }
}

// The receiver's own solution scatters as its covariances say.
TEST(Fix, ReceiverTellsHowGoodItIs)
{
    Scatter scatter;
    Vector3d error;
    double tests = 0;
    int tested = 0;
    decode({"--duration", "40000", "--rate", "0.005", "--position", homeText},
           [&](const Message& message) {
               if (const auto* pvt = dynamic_cast<const TQX_PVTCartesian2_Message*>(&message))
                   error = Vector3d(pvt->getX(), pvt->getY(), pvt->getZ()) - positionOf(home);
               if (const auto* left = dynamic_cast<const TQX_PVTResiduals2_Message*>(&message)) {
                   for (const auto* satellite : left->getSatSignalInfo2Vector()) {
                       tests += std::pow(satellite->getResidualInfoCode()->getWTest() * 1e-3, 2);
                       ++tested;
                   }
               }
               if (const auto* block =
                       dynamic_cast<const TQX_PosCovCartesian1_Message*>(&message)) {
                   Eigen::Matrix3d covariance;
                   covariance << block->getCov_XX(), block->getCov_XY(), block->getCov_XZ(),
                       block->getCov_XY(), block->getCov_YY(), block->getCov_YZ(),
                       block->getCov_XZ(), block->getCov_YZ(), block->getCov_ZZ();
                   scatter.add(error, covariance);
               }
           });
    EXPECT_NEAR(tests / tested, 1, 0.1);
    scatter.expectAsClaimed(200);
    EXPECT_LT(scatter.bias(), 0.2);
}

// Round a circle of 200 m radius to the north of its start.
TEST(Fix, FollowsTheMovingAntenna)
{
    constexpr double speed = 30;
    const Vector3d up = home.up();
    const Vector3d north = up.cross(Vector3d::UnitZ().cross(up).normalized());
    const Vector3d centre = positionOf(home) + 200 * north;
    int count = 0;
    eachEpoch({"--duration", "60", "--position", homeText, "--track", "circle", "--speed", "30"},
              [&](const Ephemerides& known, const TQX_MeasEpoch2_Message& epoch) {
                  const Fix fix =
                      Solver(known, epoch.getTOW() * 1e-3).solve(trackedIn(epoch), allSystems);
                  if (fix.redundancy == 0)
                      return;
                  const Vector3d arm = fix.position - centre;
                  EXPECT_NEAR((arm - arm.dot(up) * up).norm(), 200, 3);
                  EXPECT_NEAR(arm.dot(up), 0, 5);
                  const Vector3d expected = up.cross(arm).normalized() * speed;
                  EXPECT_LT((fix.velocity - expected).norm(), 0.5);
                  EXPECT_NEAR(fix.velocity.norm(), speed, 0.06);
                  ++count;
              });
    EXPECT_GT(count, 50);
}
