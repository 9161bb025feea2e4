#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/position/SourceChoice.h"

#include "TQX_OwnedRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>

using namespace Kor::MessageApi;
using tqx::AccuracyLevel;
using tqx::Fix;
using tqx::Position;

namespace
{

constexpr double degree = tqx::pi / 180;
constexpr tqx::Geodetic place = {47.07 * degree, 15.45 * degree, 412.3};

/// A block of a source at the place, moving 3 m/s to the north, 4 m/s to the east and 0.5 m/s up,
/// with deviations of 0.3 m along each axis where the block has any.
struct Case {
    const char* name;
    std::function<void(void* record)> fill;
    Fix fix;
    AccuracyLevel level;
    double horizontal, vertical, spatial; ///< 0 for not known
    double undulation;
    int satellites;
    double correctionAge; ///< below 0 for not known
    bool hasVelocity;
    double heading; ///< below 0 for not known
};

template<typename Record>
Record& as(void* record)
{
    return *static_cast<Record*>(record);
}

template<typename Record>
void fillGeodetic(Record& record)
{
    record.Latitude = place.latitude;
    record.Longitude = place.longitude;
    record.Height = place.height;
}

template<typename Record>
void fillCartesian(Record& record)
{
    const tqx::Vector point = toEarthFixed(place);
    record.X = point.x;
    record.Y = point.y;
    record.Z = point.z;
}

template<typename Record>
void fillLocalVelocity(Record& record)
{
    record.Vn = 3;
    record.Ve = 4;
    record.Vu = 0.5;
}

template<typename Record>
void fillFixedVelocity(Record& record)
{
    const tqx::Vector velocity = tqx::LocalFrame(place).toEarthFixed({4, 3, 0.5});
    record.Vx = static_cast<float>(velocity.x);
    record.Vy = static_cast<float>(velocity.y);
    record.Vz = static_cast<float>(velocity.z);
}

template<typename Record>
void fillGnss(Record& record, uint8_t mode, uint8_t revision)
{
    record.Revision = revision;
    record.Mode = mode;
    record.Undulation = 44.5;
    record.NrSV = 17;
    if constexpr (std::is_same_v<Record, TQX_PVTGeodeticAuth1_s>) {
        record.HAccuracy = 120;
        record.VAccuracy = 210;
    } else {
        record.MeanCorrAge = 150;
        record.ReferenceID = 1234;
    }
}

std::vector<Case> inertialCases()
{
    return {
        {"INSNavGeod1",
         [](void* memory) {
             auto& record = as<TQX_INSNavGeod1_s>(memory);
             fillGeodetic(record);
             record.Mode = 3;
             record.SBList = 1 | 1 << 2 | 1 << 5;
             record.Position_StdDev = record.Attitude = record.Velocity = 1;
             record.Undulation = 44.5;
             record.PosStdDev = {};
             record.PosStdDev.LatStdDev = record.PosStdDev.LonStdDev = 0.3F;
             record.PosStdDev.AltStdDev = 0.4F;
             record.Att.Heading = 53;
             fillLocalVelocity(record.Vel);
         },
         Fix::Standalone, AccuracyLevel::Sigma, 0.3 * std::sqrt(2), 0.4, 0, 44.5, -1, -1, true, 53},
        {"INSNavCart1",
         [](void* memory) {
             auto& record = as<TQX_INSNavCart1_s>(memory);
             fillCartesian(record);
             record.Mode = 5;
             record.SBList = 3 | 1 << 2 | 1 << 5;
             record.Position_StdDev = record.Position_Cov = record.Attitude = record.Velocity = 1;
             record.PosStdDev.XStdDev = record.PosStdDev.YStdDev = record.PosStdDev.ZStdDev = 0.3F;
             record.Att.Heading = 53;
             fillFixedVelocity(record.Vel);
         },
         Fix::Estimated, AccuracyLevel::Sigma, 0.3 * std::sqrt(2), 0.3, 0, 0, -1, -1, true, 53},
        {"IntPVAAGeod1",
         [](void* memory) {
             auto& record = as<TQX_IntPVAAGeod1_s>(memory);
             fillGeodetic(record);
             fillLocalVelocity(record);
             record.Mode = 3;
             record.Heading = 53;
         },
         Fix::Standalone, AccuracyLevel::None, 0, 0, 0, 0, -1, -1, true, 53},
        {"IntPVGeod1",
         [](void* memory) {
             auto& record = as<TQX_IntPVGeod1_s>(memory);
             fillGeodetic(record);
             fillLocalVelocity(record);
             record.Revision = 1;
             record.Mode = 3;
             record.GNSSMode = 4;
             record.NrSV = 17;
             record.Undulation = 44.5;
             record.HAccuracy = 120;
             record.VAccuracy = 210;
         },
         Fix::RtkFixed, AccuracyLevel::Percent95, 1.2, 2.1, 0, 44.5, 17, -1, true, -1},
        {"IntPVCart1",
         [](void* memory) {
             auto& record = as<TQX_IntPVCart1_s>(memory);
             fillCartesian(record);
             fillFixedVelocity(record);
             record.Revision = 1;
             record.Mode = 4;
             record.GNSSMode = 4;
             record.NrSV = 255;
             record.PosAccuracy = 250;
         },
         Fix::Estimated, AccuracyLevel::Percent95, 0, 0, 2.5, 0, -1, -1, true, -1},
    };
}

std::vector<Case> gnssCases()
{
    return {
        {"PVTGeodetic2",
         [](void* memory) {
             auto& record = as<TQX_PVTGeodetic2_s>(memory);
             fillGnss(record, 5, 2);
             fillGeodetic(record);
             fillLocalVelocity(record);
             record.HAccuracy = 120;
             record.VAccuracy = 210;
         },
         Fix::RtkFloat, AccuracyLevel::Percent95, 1.2, 2.1, 0, 44.5, 17, 1.5, true, -1},
        {"PVTCartesian2",
         [](void* memory) {
             auto& record = as<TQX_PVTCartesian2_s>(memory);
             fillGnss(record, 9, 2);
             fillCartesian(record);
             fillFixedVelocity(record);
             record.Accuracy = 250;
         },
         Fix::Ppp, AccuracyLevel::Percent95, 0, 0, 2.5, 44.5, 17, 1.5, true, -1},
        {"PosCart",
         [](void* memory) {
             auto& record = as<TQX_PosCart_s>(memory);
             fillCartesian(record);
             record.Revision = 1;
             record.Mode = 4;
             record.NrSV = 17;
             record.MeanCorrAge = 150;
             record.Cov_XX = record.Cov_YY = record.Cov_ZZ = 0.09F;
         },
         Fix::RtkFixed, AccuracyLevel::Sigma, 0.3 * std::sqrt(2), 0.3, 0, 0, 17, 1.5, false, -1},
        {"PVTGeodetic1",
         [](void* memory) {
             auto& record = as<TQX_PVTGeodetic1_s>(memory);
             fillGnss(record, 3, 0);
             fillGeodetic(record);
             fillLocalVelocity(record);
         },
         Fix::Differential, AccuracyLevel::None, 0, 0, 0, 44.5, 17, 1.5, true, -1},
        {"PVTCartesian1",
         [](void* memory) {
             auto& record = as<TQX_PVTCartesian1_s>(memory);
             fillGnss(record, 7, 0);
             fillCartesian(record);
             fillFixedVelocity(record);
         },
         Fix::Manual, AccuracyLevel::None, 0, 0, 0, 44.5, 17, 1.5, true, -1},
        {"PVTGeodeticAuth1",
         [](void* memory) {
             auto& record = as<TQX_PVTGeodeticAuth1_s>(memory);
             fillGnss(record, 1, 1);
             fillGeodetic(record);
             fillLocalVelocity(record);
         },
         Fix::Standalone, AccuracyLevel::Percent95, 1.2, 2.1, 0, 44.5, 17, -1, true, -1},
        {"PosLocal1",
         [](void* memory) {
             auto& record = as<TQX_PosLocal1_s>(memory);
             fillGeodetic(record);
             record.Mode = 4;
         },
         Fix::RtkFixed, AccuracyLevel::None, 0, 0, 0, 0, -1, -1, false, -1},
    };
}

const std::vector<Case>& cases()
{
    static const std::vector<Case> all = [] {
        std::vector<Case> both = inertialCases();
        for (const Case& each : gnssCases())
            both.push_back(each);
        return both;
    }();
    return all;
}

/// What becomes of a record that was filled like that: it is encoded and decoded.
Position positionOf(const Case& each, const std::function<void(void*)>& change = {})
{
    const tqx::PositionSource* const source = tqx::positionSource(std::string_view(each.name));
    EXPECT_TRUE(source) << each.name;
    const TQX_TypeLayout& type = *TQX_layout(source->recordType);
    TQX_OwnedRecord made(type);
    auto& header = as<TQX_MainHeader_s>(made.get());
    header.TOW = 216000500;
    header.WNc = 2400;
    each.fill(made.get());
    if (change)
        change(made.get());
    uint8_t bytes[1024];
    const int bits = type.encode(bytes, sizeof bytes, made.get());
    EXPECT_GT(bits, 0) << each.name;
    TQX_Context_s context;
    TQX_init_context(&context);
    TQX_OwnedRecord record;
    EXPECT_GT(record.decode(&context, bytes, static_cast<uint16_t>(bits / 8)), 0);
    Position position;
    EXPECT_TRUE(readPosition(record.get(), position)) << each.name;
    return position;
}

void expectKnown(double value, double expected, bool isKnown, double tolerance)
{
    EXPECT_EQ(std::isfinite(value), isKnown);
    EXPECT_NEAR(isKnown ? value : expected, expected, tolerance);
}

} // namespace

TEST(PositionBlocks, EverySourceIsRead)
{
    EXPECT_EQ(cases().size(), tqx::positionSources().size());
    for (const Case& each : cases()) {
        SCOPED_TRACE(each.name);
        const Position position = positionOf(each);
        EXPECT_STREQ(position.source->name, each.name);
        EXPECT_EQ(position.time, 2400 * tqx::millisPerWeek + 216000500);
        EXPECT_NEAR(position.latitude, 47.07, 1e-10);
        EXPECT_NEAR(position.longitude, 15.45, 1e-10);
        EXPECT_NEAR(position.height, 412.3, 1e-5);
        EXPECT_EQ(position.fix, each.fix);
        EXPECT_NE(position.mode, "");
        EXPECT_EQ(position.level, each.level);
        expectKnown(position.horizontalAccuracy, each.horizontal, each.horizontal != 0, 1e-6);
        expectKnown(position.verticalAccuracy, each.vertical, each.vertical != 0, 1e-6);
        expectKnown(position.spatialAccuracy, each.spatial, each.spatial != 0, 1e-6);
        expectKnown(position.undulation, each.undulation, each.undulation != 0, 1e-6);
        EXPECT_EQ(position.satellites, each.satellites);
        expectKnown(position.correctionAge, each.correctionAge, each.correctionAge >= 0, 1e-6);
        expectKnown(position.north, 3, each.hasVelocity, 1e-5);
        expectKnown(position.east, 4, each.hasVelocity, 1e-5);
        expectKnown(position.up, 0.5, each.hasVelocity, 1e-5);
        expectKnown(position.heading, each.heading, each.heading >= 0, 1e-5);
    }
}

TEST(PositionBlocks, SaysWhenThereIsNone)
{
    for (const Case& each : cases()) {
        SCOPED_TRACE(each.name);
        const uint32_t type = tqx::positionSource(std::string_view(each.name))->recordType;
        const auto member = [type](const char* name) {
            const TQX_TypeLayout& layout = *TQX_layout(type);
            for (unsigned i = 0; i < layout.fieldCount; ++i) {
                if (std::string_view(layout.fields[i].name) == name)
                    return layout.fields[i].recordOffset;
            }
            return uint32_t{0};
        };
        const uint32_t coordinate =
            std::max(member("Latitude"), member("X")); // the one that it has
        ASSERT_NE(coordinate, 0U);
        const auto byteAt = [](void* record, uint32_t offset) -> uint8_t& {
            return static_cast<uint8_t*>(record)[offset];
        };
        const std::function<void(void*)> changes[] = {
            [&](void* record) { byteAt(record, member("Mode")) = 0; },
            [&](void* record) { byteAt(record, member("Error")) = 2; },
            [&](void* record) {
                const double none = -2e10;
                std::memcpy(&byteAt(record, coordinate), &none, sizeof none);
            },
        };
        for (const auto& change : changes) {
            const Position position = positionOf(each, change);
            EXPECT_EQ(position.fix, Fix::None);
            EXPECT_TRUE(std::isnan(position.latitude));
            EXPECT_TRUE(std::isnan(position.north));
            EXPECT_EQ(position.satellites, -1);
        }
    }
}

TEST(PositionBlocks, OlderRevisionsHaveNoAccuracy)
{
    for (const char* name : {"PVTGeodetic2", "PVTCartesian2", "IntPVGeod1", "PVTGeodeticAuth1"}) {
        const auto each = std::find_if(cases().begin(), cases().end(), [name](const Case& c) {
            return std::string_view(c.name) == name;
        });
        const Position position =
            positionOf(*each, [](void* record) { as<TQX_MainHeader_s>(record).Revision = 0; });
        EXPECT_EQ(position.level, AccuracyLevel::None) << name;
        EXPECT_NE(position.fix, Fix::None) << name;
    }
}

TEST(SourceChoice, PrefersTheBestThatLasts)
{
    const auto at = [](const char* name, tqx::GnssMillis time) {
        Position position;
        position.source = tqx::positionSource(std::string_view(name));
        position.time = time;
        position.fix = Fix::Standalone;
        return position;
    };
    tqx::SourceChoice choice;
    EXPECT_EQ(choice.best(), nullptr);
    Position none = at("INSNavGeod1", 0);
    none.fix = Fix::None;
    choice.take(none);
    EXPECT_EQ(choice.best(), nullptr);
    for (tqx::GnssMillis time = 0; time <= 100000; time += 1000)
        choice.take(at("PVTCartesian2", time));
    EXPECT_STREQ(choice.best()->name, "PVTCartesian2");
    for (tqx::GnssMillis time = 20000; time <= 100000; time += 1000)
        choice.take(at("IntPVGeod1", time));
    EXPECT_STREQ(choice.best()->name, "PVTCartesian2"); // the other has four fifths
    choice.take(at("IntPVGeod1", 10000));
    EXPECT_STREQ(choice.best()->name, "IntPVGeod1");
    EXPECT_EQ(choice.found().size(), 2U);
}
