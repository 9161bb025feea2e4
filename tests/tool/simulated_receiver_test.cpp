#include "Tool.h"

#include "tqx/gnss/orbit/GlonassOrbit.h"
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

// The elements at the node, with the axis that follows from the draconic period as the interface
// document of GLONASS has it, and the equations of motion from there.
TEST(SimulatedReceiver, GlonassAlmanacsAgreeWithEphemerides)
{
    constexpr double gravitation = 3.986004418e14;
    constexpr double rotation = 7.292115e-5;
    constexpr double midnight = 2 * 86400 - 3 * 3600 + 18; // in Moscow, before the log
    constexpr double start = 216000;
    const auto motionOf = [](const json& almanac) {
        const double e = almanac.at("e");
        const double tilt = (almanac.at("delta_i").get<double>() + 63. / 180) * tqx::pi;
        const double perigee = almanac.at("omega").get<double>() * tqx::pi;
        const double period = almanac.at("DEL_T").get<double>() + 43200;
        double osculating = period;
        double axis = 0;
        for (int i = 0; i < 5; ++i) {
            axis = std::cbrt(gravitation * std::pow(osculating / (2 * tqx::pi), 2));
            const double parameter = axis * (1 - e * e);
            const double atNode = 1 + e * std::cos(perigee);
            const double bracket = (2 - 2.5 * std::pow(std::sin(tilt), 2)) *
                                       std::pow(1 - e * e, 1.5) / (atNode * atNode) +
                                   std::pow(atNode, 3) / (1 - e * e);
            osculating =
                period / (1 - 1.5 * 1.08262575e-3 * std::pow(6378136 / parameter, 2) * bracket);
        }
        const double parameter = axis * (1 - e * e);
        const double radius = parameter / (1 + e * std::cos(perigee));
        const double speed = std::sqrt(gravitation / parameter);
        const double outwards = speed * e * -std::sin(perigee);
        const double along = speed * (1 + e * std::cos(perigee));
        const double node = almanac.at("lambda_n").get<double>() * tqx::pi;
        const tqx::Vector towards = {std::cos(node), std::sin(node), 0};
        const tqx::Vector ahead = {-std::sin(node) * std::cos(tilt),
                                   std::cos(node) * std::cos(tilt), std::sin(tilt)};
        const tqx::Vector position = towards * radius;
        const tqx::Vector velocity = towards * outwards + ahead * along;
        return tqx::Motion{
            position,
            {velocity.x + rotation * position.y, velocity.y - rotation * position.x, velocity.z}};
    };
    const std::string log = simulated({"--almanacs", "--systems", "glonass"});
    std::map<std::string, tqx::Vector> places;
    for (const json& fields : blocks("GLOAlm", log)) {
        EXPECT_EQ(fields.at("N_4"), 8); // 2026 is the third year of the interval from 2024
        EXPECT_EQ(fields.at("N_A"), 366 + 365 + 6);
        const double passed = midnight + fields.at("t_lambda").get<double>();
        places[fields.at("SVID")] = tqx::integrated(motionOf(fields), passed, start).position;
    }
    EXPECT_EQ(places.size(), 24U);
    size_t compared = 0;
    for (const json& fields : blocks("GLONav", log)) {
        const tqx::Motion sent = {{fields.at("X"), fields.at("Y"), fields.at("Z")},
                                  {fields.at("Vx"), fields.at("Vy"), fields.at("Vz")}};
        const tqx::Vector place =
            tqx::integrated(sent, fields.at("t_oe").get<double>(), start).position;
        const std::string name = fields.at("SVID");
        ASSERT_EQ(places.count(name), 1U) << name;
        EXPECT_LT(length(place - places[name]), 5000) << name;
        ++compared;
    }
    EXPECT_GE(compared, 5U);
}

// In steps of 2.6 km in the plane of the equator and of 26 km and 60 m/s across it.
TEST(SimulatedReceiver, SbasAlmanacsAgreeWithEphemerides)
{
    const std::string log = simulated({"--almanacs", "--systems", "gps,sbas"});
    const auto placeAt = [](const json& fields, double time) {
        const double elapsed = time - fields.at("t_0").get<double>();
        const auto along = [&](const char* position, const char* velocity) {
            return fields.at(position).get<double>() + fields.at(velocity).get<double>() * elapsed;
        };
        return tqx::Vector{along("XG", "XGDot"), along("YG", "YGDot"), along("ZG", "ZGDot")};
    };
    std::map<std::string, json> ephemerides;
    for (const json& fields : blocks("GEONav", log))
        ephemerides[fields.at("PRN")] = fields;
    size_t compared = 0;
    for (const json& fields : blocks("GEOAlm", log)) {
        ASSERT_EQ(ephemerides.count(fields.at("PRN")), 1U) << fields; // received
        const auto found = ephemerides.find("S" + std::to_string(fields.at("AlmPRN").get<int>()));
        if (found == ephemerides.end())
            continue; // it is below the horizon, another of the service sends it
        const double time = fields.at("t_0");
        EXPECT_LT(length(placeAt(fields, time) - placeAt(found->second, time)), 13200) << fields;
        ++compared;
    }
    EXPECT_GE(compared, 3U);
}

// The vector of the receiver leaves whole cycles of the differences of the carriers, and the angles
// are those of the vector, which leads ahead.
TEST(SimulatedReceiver, AttitudeIsThatOfItsAntennas)
{
    const std::string log = simulated({"--two-antennas", "--track", "circle", "--speed", "30"});
    std::map<double, json> vectors;
    for (const json& fields : blocks("AuxAntPositions1", log))
        vectors[fields.at("TOW")] = fields.at("AuxAntPosition").at(0);
    std::map<std::pair<double, std::string>, tqx::Vector> directions;
    for (const json& fields : blocks("SatVisibility1", log)) {
        for (const json& satellite : fields.at("SatInfo")) {
            const double azimuth = satellite.at("Azimuth").get<double>() * degree;
            const double elevation = satellite.at("Elevation").get<double>() * degree;
            directions[{fields.at("TOW"), satellite.at("SVID")}] = {
                std::sin(azimuth) * std::cos(elevation), std::cos(azimuth) * std::cos(elevation),
                std::sin(elevation)};
        }
    }
    std::map<std::pair<double, std::string>, double> phases;
    size_t compared = 0;
    for (const json& row : rows({"observations"}, log)) {
        const std::pair<double, std::string> key = {row.at("TOW"), row.at("Satellite")};
        if (key.second[0] != 'G' || row.at("Signal") != "1C")
            continue;
        if (row.at("Antenna") == 0) {
            phases[key] = row.at("Phase");
            continue;
        }
        const json& vector = vectors.at(key.first);
        const tqx::Vector baseline = {vector.at("DeltaEast"), vector.at("DeltaNorth"),
                                      vector.at("DeltaUp")};
        const double cycles = phases.at(key) - row.at("Phase").get<double>() -
                              dot(baseline, directions.at(key)) * 1575.42e6 / tqx::speedOfLight;
        EXPECT_NEAR(cycles, std::round(cycles), 0.12) << row;
        ++compared;
    }
    EXPECT_GE(compared, 100U);

    const json track =
        json::parse(runTool({"track", "-q", "--format", "geojson", "-"}, log).output)["features"];
    size_t attitudes = 0;
    double squares = 0;
    const std::vector<json> covariances = blocks("AttCovEuler1", log);
    const std::vector<json> positions = blocks("PVTGeodetic2", log);
    for (const json& fields : blocks("AttEuler1", log)) {
        const json& vector = vectors.at(fields.at("TOW"));
        const double east = vector.at("DeltaEast");
        const double north = vector.at("DeltaNorth");
        const double up = vector.at("DeltaUp");
        const double heading = fields.at("Heading");
        EXPECT_NEAR(std::hypot(east, north, up), 1.5, 0.02);
        EXPECT_NEAR(std::remainder(heading - std::atan2(east, north) / degree, 360), 0, 0.01);
        EXPECT_NEAR(fields.at("Pitch"), std::atan2(up, std::hypot(east, north)) / degree, 0.01);
        EXPECT_NEAR(track.at(attitudes).at("properties").at("heading"), heading, 1e-4);
        const json& position = positions.at(attitudes);
        const double course =
            std::atan2(position.at("Ve").get<double>(), position.at("Vn").get<double>()) / degree;
        EXPECT_NEAR(std::remainder(heading - course, 360), 0, 0.3); // the vehicle drives ahead
        EXPECT_NEAR(fields.at("HeadingDot"), -30. / 200 / degree, 2);
        const double passed = fields.at("TOW").get<double>() - 216000;
        squares += std::pow(std::remainder(heading - 90 + 30. / 200 / degree * passed, 360), 2) /
                   covariances.at(attitudes).at("Cov_HeadHead").get<double>();
        ++attitudes;
    }
    EXPECT_EQ(attitudes, 30U);
    EXPECT_GT(squares / 30, 0.4); // the variances are those of the errors
    EXPECT_LT(squares / 30, 1.9);
}
