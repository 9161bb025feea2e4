#include "Tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>

using nlohmann::json;

namespace
{

constexpr double degree = 3.14159265358979323846 / 180;
constexpr double metresPerDegree = 6335439.3273 * degree; ///< on the equator, to the north

std::string lineOf(const char* block, double second, json fields)
{
    fields["TOW"] = std::llround(second * 1000);
    fields["WNc"] = 2400;
    return json({{"block", block}, {"fields", fields}}).dump() + "\n";
}

/// A vehicle that brakes on the way north: it has come 20 t - t^2 metres after t seconds.
std::string positionAt(double second)
{
    const double north = 20 * second - second * second;
    return lineOf("PVTGeodetic2", second,
                  {{"Mode", 4},
                   {"Latitude", north / metresPerDegree * degree},
                   {"Longitude", 30 * degree},
                   {"Height", 100 + second},
                   {"Undulation", 20},
                   {"Vn", 20 - 2 * second},
                   {"Ve", 0},
                   {"Vu", 1}});
}

std::string attitudeAt(double second, double heading)
{
    return lineOf("AttEuler1", second,
                  {{"Mode", 4}, {"Heading", heading}, {"Pitch", second}, {"Roll", -second}});
}

std::string pulseAt(double second, double offset, int info)
{
    return lineOf("ExtEvent1", second, {{"EventInfo", info}, {"Offset", offset}});
}

ToolRun events(const std::string& lines, const QStringList& more = {})
{
    const ToolRun log = runTool({"encode", "-"}, lines);
    EXPECT_EQ(log.words, "");
    return runTool(QStringList{"events"} + more + QStringList{"-"}, log.output);
}

json features(const std::string& lines, const QStringList& more = {})
{
    const ToolRun run = events(lines, QStringList{"--format", "geojson"} + more);
    EXPECT_EQ(run.status, 0) << run.words;
    return json::parse(run.output).at("features");
}

} // namespace

TEST(Events, AreInterpolated)
{
    // The event comes before the second epoch in the log, and falls between two.
    const json all = features(positionAt(1) + attitudeAt(1, 350) + pulseAt(2.25, 0.0005, 1 | 16) +
                              positionAt(3) + attitudeAt(3, 30) + positionAt(20));
    ASSERT_EQ(all.size(), 1U);
    const json& properties = all[0]["properties"];
    EXPECT_EQ(properties["utc"], "2026-01-03T23:59:44.250500000Z");
    EXPECT_EQ(properties["gps"], "2026-01-04T00:00:02.250500000");
    EXPECT_EQ(properties["input"], "Event A");
    EXPECT_EQ(properties["edge"], "Falling");
    EXPECT_EQ(properties["position"], "interpolated");
    EXPECT_EQ(properties["mode"], "RTK fixed");
    EXPECT_EQ(properties["attitude"], "interpolated");
    EXPECT_NEAR(properties["heading"].get<double>(), 350 + 40 * 1.2505 / 2 - 360, 1e-3);
    EXPECT_NEAR(properties["pitch"].get<double>(), 2.2505, 1e-3);
    EXPECT_NEAR(properties["roll"].get<double>(), -2.2505, 1e-3);
    const json& place = all[0]["geometry"]["coordinates"];
    EXPECT_NEAR(place[0].get<double>(), 30, 1e-8);
    EXPECT_NEAR(place[1].get<double>() * metresPerDegree, 20 * 2.2505 - 2.2505 * 2.2505, 2e-3);
    EXPECT_NEAR(place[2].get<double>(), 102.2505, 1e-3);
    EXPECT_NEAR(properties["height_above_geoid"].get<double>(), 82.2505, 1e-3);
}

TEST(Events, WhatTheReceiverComputedIsBetter)
{
    const std::string pulse = pulseAt(2, 0.000123, 2);
    const std::string own = lineOf(
        "ExtEventPVTGeodetic1", 2,
        {{"Mode", 5}, {"EventInfo", 2}, {"Latitude", 0.5}, {"Longitude", -0.5}, {"Height", 7}});
    const std::string inertial = lineOf("ExtEventINSNavGeod1", 2,
                                        {{"Mode", 3},
                                         {"Source", 2},
                                         {"TOWFraction", 123000},
                                         {"Latitude", 0.25},
                                         {"Longitude", -0.25},
                                         {"Height", 8},
                                         {"Undulation", 1}});
    const std::string attitude =
        lineOf("ExtEventAttEuler", 2,
               {{"Mode", 4}, {"EventInfo", 2}, {"Heading", 77}, {"Pitch", 0}, {"Roll", 0}});
    const std::string epochs = positionAt(1) + positionAt(3);
    const struct {
        std::string lines;
        double latitude;
        bool hasAttitude;
    } cases[] = {
        {epochs + pulse + own, 0.5, false},
        {epochs + own + pulse + attitude, 0.5, true},
        {attitude + own + inertial + pulse + epochs, 0.25, true},
        {inertial + own + pulse, 0.25, false},
    };
    for (const auto& each : cases) {
        const json all = features(each.lines);
        ASSERT_EQ(all.size(), 1U);
        EXPECT_NEAR(all[0]["geometry"]["coordinates"][1].get<double>(), each.latitude / degree,
                    1e-8);
        const json& properties = all[0]["properties"];
        EXPECT_EQ(properties["position"], "receiver");
        EXPECT_EQ(properties["input"], "Event B");
        EXPECT_EQ(properties["gps"], "2026-01-04T00:00:02.000123000");
        EXPECT_EQ(properties.value("attitude", ""), each.hasAttitude ? "receiver" : "");
        if (each.hasAttitude) {
            EXPECT_EQ(properties["heading"], 77.0);
        }
    }
}

TEST(Events, WithoutNeighboursTheyHaveNoPlace)
{
    const std::string pulses = pulseAt(1, 0, 1) + pulseAt(4, 0, 1) + pulseAt(30, 0, 1);
    const std::string lines = positionAt(2) + pulses + positionAt(3) + positionAt(20);
    const ToolRun run = events(lines);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.words.find("3 of 3 events without a position"), std::string::npos) << run.words;
    EXPECT_EQ(linesOf(run.output).size(), 4U);
    EXPECT_EQ(linesOf(run.output)[1].substr(0, 30), "2400,1.000000000,2026-01-04T00");
    for (const json& feature : features(lines))
        EXPECT_TRUE(feature["geometry"].is_null());
    EXPECT_NE(events(positionAt(1)).words.find("no event"), std::string::npos);
}

TEST(Events, TimesSelectEventsNotEpochs)
{
    const std::string lines = positionAt(1) + pulseAt(1.5, 0, 1) + positionAt(2) +
                              pulseAt(2.5, 0, 1) + positionAt(3) + pulseAt(3.5, 0, 1) +
                              positionAt(4);
    const json all = features(lines, {"--from", "2400:2.5", "--to", "2400:3.5"});
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0]["properties"]["position"], "interpolated");
}
