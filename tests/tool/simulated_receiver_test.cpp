#include "Tool.h"

#include "tqx/gnss/orbit/Kepler.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

using nlohmann::json;

// What the simulated receiver does when it is asked to.

namespace
{

constexpr double degree = tqx::pi / 180;

std::string simulated(const QStringList& options)
{
    const ToolRun run = runTool(QStringList{"simulate", "--duration", "30"} + options);
    EXPECT_EQ(run.status, 0) << run.words;
    return run.output;
}

std::vector<json> rows(const QStringList& command, const std::string& log)
{
    std::vector<json> all;
    const ToolRun run = runTool(command + QStringList{"--format", "jsonl", "-"}, log);
    for (const std::string& line : linesOf(run.output))
        all.push_back(json::parse(line));
    return all;
}

std::vector<json> blocks(const char* type, const std::string& log)
{
    std::vector<json> all;
    for (const json& row : rows({"dump", "--type", type}, log))
        all.push_back(row.at("fields"));
    return all;
}

} // namespace

TEST(SimulatedReceiver, TracksTheSystemsNamed)
{
    const auto lettersOf = [](const QStringList& options) {
        std::set<char> letters;
        for (const json& row : rows({"observations"}, simulated(options)))
            letters.insert(row.at("Satellite").get<std::string>()[0]);
        return letters;
    };
    EXPECT_EQ(lettersOf({}), (std::set<char>{'G', 'R', 'E', 'C'}));
    EXPECT_EQ(lettersOf({"--systems", "galileo"}), std::set<char>{'E'});
    EXPECT_EQ(lettersOf({"--systems", "gps,qzss,navic,sbas", "--position", "5,100,50"}),
              (std::set<char>{'G', 'J', 'I', 'S'}));
}

TEST(SimulatedReceiver, LosesLockAndJumps)
{
    const auto lostIn = [](const QStringList& options) {
        size_t count = 0;
        for (const json& row : rows({"observations"}, simulated(options)))
            count += row.at("Lost").get<bool>() ? 1 : 0;
        return count;
    };
    EXPECT_EQ(lostIn({}), 0U);
    const size_t lost =
        lostIn({"--slips", "360"}); // some 30 satellites of 2 to 3 signals, for 30 s
    EXPECT_GT(lost, 100U);
    EXPECT_LT(lost, 400U);
    std::set<int> jumps;
    for (const json& epoch : blocks("MeasEpoch2", simulated({"--clock-drift", "-100"})))
        jumps.insert(epoch.at("CumClkJumps").get<int>());
    EXPECT_EQ(jumps.size(), 4U); // three times a millisecond
}

TEST(SimulatedReceiver, MeasuresAtTwoAntennas)
{
    const std::string log = simulated({"--two-antennas"});
    std::map<std::string, std::pair<double, double>> directions; // azimuth and elevation, degrees
    const std::vector<json> visible = blocks("SatVisibility1", log);
    for (const json& satellite : visible.front().at("SatInfo"))
        directions[satellite.at("SVID")] = {satellite.at("Azimuth"), satellite.at("Elevation")};
    std::map<std::tuple<double, std::string, std::string>, double> first;
    double sum = 0;
    double weights = 0;
    for (const json& row : rows({"observations"}, log)) {
        const std::tuple<double, std::string, std::string> key = {
            row.at("TOW"), row.at("Satellite"), row.at("Signal")};
        if (row.at("Antenna") == 0) {
            first[key] = row.at("Range");
            continue;
        }
        const auto direction = directions.find(std::get<1>(key));
        if (direction == directions.end())
            continue;
        const double east = std::sin(direction->second.first * degree) *
                            std::cos(direction->second.second * degree);
        ASSERT_EQ(first.count(key), 1U) << row;
        sum += east * (first[key] - row.at("Range").get<double>());
        weights += east * east;
    }
    EXPECT_GT(weights, 100);
    // Metres to the east. Reflections stay for longer than the log is, so that they do not average.
    EXPECT_NEAR(sum / weights, 1.5, 0.4);
}

// An almanac and an ephemeris of one satellite place it alike, within what an almanac is good for.
TEST(SimulatedReceiver, AlmanacsAgreeWithEphemerides)
{
    const std::string log =
        simulated({"--almanacs", "--systems", "gps,galileo,beidou,qzss", "--position", "5,110,50"});
    const struct {
        const char* almanac;
        const char* ephemeris;
        const char* satellite;
        tqx::System system;
        double tilt; ///< semicircles
        double root; ///< added to the root of the axis
    } cases[] = {
        {"GPSAlm", "GPSNav", "PRN", tqx::System::Gps, 0.3, 0},
        {"GALAlm", "GALNav", "SVID", tqx::System::Galileo, 56. / 180, std::sqrt(29600000)},
        {"BDSAlm", "BDSNav", "PRN", tqx::System::BeiDou, 0.3, 0},
        {"QZSAlm", "QZSNav", "PRN", tqx::System::Qzss, 0.25, 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.almanac);
        const tqx::EarthModel& model = tqx::earthModel(each.system);
        const auto placeOf = [&model](const json& fields, const char* reference, double tilt,
                                      double axisRoot) {
            tqx::KeplerElements elements = {};
            const double at = fields.at(reference);
            elements.sqrtA = axisRoot;
            elements.eccentricity = fields.at("e");
            elements.inclination = tilt;
            elements.perigee = fields.at("omega");
            elements.meanAnomaly = fields.at("M_0");
            elements.nodeRate = fields.at("OMEGADOT");
            elements.ascendingNode =
                fields.at("OMEGA_0").get<double>() - model.rotation / tqx::pi * at;
            return pointAt(elements, model, 216000 - at).position;
        };
        std::map<std::string, tqx::Vector> places;
        for (const json& fields : blocks(each.almanac, log)) {
            const bool isFlat = fields.at(each.satellite) == "J07";
            const char* const root = each.root == 0 ? "SQRT_A" : "DEL_SQRT_A";
            places[fields.at(each.satellite)] = placeOf(
                fields, "t_oa", fields.at("delta_i").get<double>() + (isFlat ? 0 : each.tilt),
                fields.at(root).get<double>() + each.root);
        }
        size_t compared = 0;
        for (const json& fields : blocks(each.ephemeris, log)) {
            const std::string name = fields.at(each.satellite);
            ASSERT_EQ(places.count(name), 1U) << name;
            const tqx::Vector place =
                placeOf(fields, "t_oe", fields.at("i_0"), fields.at("SQRT_A"));
            EXPECT_LT(length(place - places[name]), 3000) << name;
            ++compared;
        }
        EXPECT_GE(compared, 3U);
    }
}
