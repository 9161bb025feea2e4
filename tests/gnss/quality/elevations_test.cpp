#include "ReportRuns.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{

using nlohmann::json;

constexpr const char* place = "47.07,15.45,412.3"; ///< at which receivers are simulated

struct Source {
    const char* name;
    const char* cut;       ///< what of the log is there
    const char* arguments; ///< of the report
    const char* source;    ///< of the elevations
    double tolerance;      ///< degrees
};

class SimulatedLog : public testing::Test
{
protected:
    SimulatedLog()
    {
        m_runs.expectRun("simulate -o log.tqx --duration 900 "
                         "--systems gps,glonass,galileo,beidou,qzss,navic,sbas");
    }

    const ToolRuns m_runs;
};

class Elevations : public SimulatedLog, public testing::WithParamInterface<Source>
{
};

/// Figures by elevation are the same wherever the elevations are from, but for what is near the
/// limits of their steps.
TEST_P(Elevations, Agree)
{
    const json expected = reportsOf(m_runs, "log.tqx")[0];
    EXPECT_GT(expected["elevation_sources"]["visibility"], 50000);
    m_runs.expectRun(std::string("cut ") + GetParam().cut + " log.tqx -o cut.tqx");
    const json report = reportsOf(m_runs, std::string(GetParam().arguments) + " cut.tqx")[0];
    for (const auto& [source, observations] : report["elevation_sources"].items())
        EXPECT_EQ(observations != 0, source == GetParam().source) << source << observations;
    ASSERT_EQ(report["satellites"].size(), expected["satellites"].size());
    for (size_t i = 0; i < expected["satellites"].size(); ++i) {
        const json& satellite = report["satellites"][i];
        EXPECT_EQ(satellite["satellite"], expected["satellites"][i]["satellite"]);
        EXPECT_NEAR(satellite["highest"], expected["satellites"][i]["highest"],
                    GetParam().tolerance)
            << satellite;
    }
    ASSERT_EQ(report["signals"].size(), expected["signals"].size());
    for (size_t i = 0; i < expected["signals"].size(); ++i) {
        const json& signal = expected["signals"][i];
        for (size_t step = 0; step < 9; ++step) {
            const json& cn0 = signal["cn0_by_elevation"][step];
            const json& same = report["signals"][i]["cn0_by_elevation"][step];
            ASSERT_EQ(cn0.is_null(), same.is_null()) << signal;
            if (!cn0.is_null()) {
                EXPECT_NEAR(cn0, same, 0.3) << signal;
            }
        }
        EXPECT_NEAR(signal["observations"], report["signals"][i]["observations"], 50) << signal;
    }
    EXPECT_NEAR(report["figures"]["multipath"], expected["figures"]["multipath"], 0.005);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, Elevations,
    testing::Values(
        Source{"Ephemerides", "--not-type SatVisibility1,ChannelStatus", "", "ephemerides", 0.15},
        Source{"EphemeridesAndReference", "--not-type 'SatVisibility1,ChannelStatus,P*,*Pos*'",
               "--reference 47.07,15.45,412.3", "ephemerides", 0.15},
        Source{"EphemeridesAndReferenceLog", "--not-type 'SatVisibility1,ChannelStatus,P*,*Pos*'",
               "--reference log.tqx", "ephemerides", 0.15}),
    [](const auto& test) { return test.param.name; });

/// Without any of these there are no elevations, and no mask.
TEST_F(SimulatedLog, HasNoElevationsWithoutAPlace)
{
    m_runs.expectRun("cut --not-type 'SatVisibility1,ChannelStatus,P*,*Pos*' log.tqx -o cut.tqx");
    const json report = reportsOf(m_runs, "cut.tqx")[0];
    EXPECT_FALSE(report["mask_applied"]);
    EXPECT_EQ(report["elevation_sources"]["ephemerides"], 0);
    EXPECT_NE(m_runs.expectRun("report cut.tqx").find("no mask applied"), std::string::npos);
    const json masked = reportsOf(m_runs, "--mask 80 cut.tqx")[0];
    EXPECT_EQ(masked["figures"]["satellites"], report["figures"]["satellites"]);
}

/// A geostationary satellite of BeiDou, whose elements refer to another plane, stays where it is.
TEST(GeostationaryElevation, IsThatOfItsLongitude)
{
    constexpr double radian = 3.14159265358979 / 180;
    constexpr double rotation = 7.2921150e-5;
    constexpr double longitude = 40;
    constexpr unsigned medium = 173; // C33, whose measurements are taken for those of C03
    constexpr unsigned geostationary = 143;
    const double axis = std::cbrt(3.986004418e14 / (rotation * rotation));
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 3000 --rate 0.1 --systems beidou --position " +
                   std::string(place));
    runs.expectRun("cut --type MeasEpoch2,BDSNav,PVTGeodetic2 log.tqx -o cut.tqx");
    rewrite(runs, "cut.tqx", "geo.tqx", [&](const std::string& name, json& fields) {
        if (name == "MeasEpoch2") {
            for (json& satellite : fields["Type1"]) {
                if (satellite["SVID"] == medium)
                    satellite["SVID"] = geostationary;
            }
        } else if (name == "BDSNav" && fields["PRN"] == medium) {
            fields["PRN"] = geostationary;
            fields["Source"] = 1;
            for (const char* correction : {"C_rs", "C_rc", "C_us", "C_uc", "C_is", "C_ic", "DEL_N",
                                           "IDOT", "OMEGADOT", "e", "omega"})
                fields[correction] = 0;
            fields["SQRT_A"] = std::sqrt(axis);
            fields["i_0"] = 5.0 / 180;
            const double node = 1 + rotation * fields["t_oe"].get<double>() / radian / 180;
            fields["OMEGA_0"] = std::remainder(node, 2.0);
            fields["M_0"] = longitude / 180 - 1;
        }
    });
    // On a sphere, as seen from the geocentric latitude; the vertical deviates by 0.19 degrees.
    const double between = std::cos(46.88 * radian) * std::cos((longitude - 15.45) * radian);
    const double expected =
        std::atan2(between - 6367e3 / axis, std::sqrt(1 - between * between)) / radian;
    const json report = reportsOf(runs, "geo.tqx")[0];
    unsigned count = 0;
    for (const json& satellite : report["satellites"]) {
        if (satellite["satellite"] != "C03")
            continue;
        ++count;
        EXPECT_NEAR(satellite["highest"], expected, 0.25);
    }
    EXPECT_EQ(count, 1U);
}

} // namespace
