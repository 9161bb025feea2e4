#include "Tool.h"
#include "XmlRules.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <cmath>
#include <cstring>

using nlohmann::json;

namespace
{

constexpr double degree = 3.14159265358979323846 / 180;

/// A position as a line for `tqx encode`.
struct Fixed {
    int second;
    int mode;
    double latitude, longitude;
    double height = 500;
    double undulation = 40;
};

std::string blockOf(const Fixed& at)
{
    return json({{"block", "PVTGeodetic2"},
                 {"fields",
                  {{"Revision", 2},
                   {"TOW", at.second * 1000},
                   {"WNc", 2400},
                   {"Mode", at.mode},
                   {"Latitude", at.latitude * degree},
                   {"Longitude", at.longitude * degree},
                   {"Height", at.height},
                   {"Undulation", at.undulation},
                   {"Vn", -2.5},
                   {"Ve", -2.5},
                   {"Vu", 0},
                   {"NrSV", 9},
                   {"MeanCorrAge", 123},
                   {"ReferenceID", 77},
                   {"HAccuracy", 3},
                   {"VAccuracy", 5}}}})
               .dump() +
           "\n";
}

/// South and west, a change of mode, an epoch without a position, a single point after a gap, the
/// meridian at 180 degrees, no undulation.
const std::vector<Fixed> drive = {
    {100, 4, -33.5, -151.25},      {101, 4, -33.5001, -151.2501},
    {102, 5, -33.5002, -151.2502}, {103, 5, -33.5003, -151.2503},
    {104, 0, -2e10, -2e10},        {105, 1, -33.5005, -151.2505},
    {400, 2, -0.0000001, 180},     {401, 2, 89.99999999999, 0, 500, -2e10},
};

std::string driveLog()
{
    std::string lines;
    for (const Fixed& each : drive)
        lines += blockOf(each);
    return runTool({"encode", "-"}, lines).output;
}

std::string track(const char* format, const std::string& log = driveLog())
{
    const ToolRun run = runTool({"track", "--format", format, "-"}, log);
    EXPECT_EQ(run.status, 0) << run.words;
    return run.output;
}

size_t countOf(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells(1);
    for (const char character : line) {
        if (character == ',') {
            cells.emplace_back();
        } else {
            cells.back() += character;
        }
    }
    return cells;
}

/// Those of the drive that are positions.
std::vector<Fixed> positions()
{
    std::vector<Fixed> all;
    for (const Fixed& each : drive) {
        if (each.mode != 0)
            all.push_back(each);
    }
    return all;
}

} // namespace

TEST(Track, TableHasWhatTheBlocksSay)
{
    const std::vector<std::string> lines = linesOf(track("csv"));
    const std::vector<Fixed> expected = positions();
    ASSERT_EQ(lines.size(), expected.size() + 1);
    const std::vector<std::string> heading = cellsOf(lines[0]);
    const auto column = [&heading](const char* name) {
        return static_cast<size_t>(std::find(heading.begin(), heading.end(), name) -
                                   heading.begin());
    };
    for (size_t i = 0; i < expected.size(); ++i) {
        const std::vector<std::string> cells = cellsOf(lines[i + 1]);
        ASSERT_EQ(cells.size(), heading.size());
        EXPECT_EQ(cells[0], "2400");
        EXPECT_EQ(cells[1], std::to_string(expected[i].second) + ".000");
        EXPECT_NEAR(std::stod(cells[column("Latitude [degree]")]), expected[i].latitude, 1e-10);
        EXPECT_NEAR(std::stod(cells[column("Longitude [degree]")]), expected[i].longitude, 1e-10);
        EXPECT_EQ(cells[column("Height above ellipsoid [meter]")], "500.0000");
        EXPECT_EQ(cells[column("Height above geoid [meter]")],
                  expected[i].undulation < 0 ? "" : "460.0000");
        EXPECT_EQ(cells[column("Accuracy level")], "95 %");
        EXPECT_EQ(cells[column("Horizontal accuracy [meter]")], "0.0300");
        EXPECT_EQ(cells[column("Correction age [second]")], "1.23");
        EXPECT_EQ(cells[column("NrSV")], "9");
    }
    EXPECT_EQ(cellsOf(lines[1])[2], "2026-01-04T00:01:40.000");
    EXPECT_EQ(cellsOf(lines[1])[3], "2026-01-04T00:01:22.000Z");
    EXPECT_EQ(cellsOf(lines[1])[5], "RTK fixed");
}

TEST(Track, GpxFollowsItsSchema)
{
    const std::string text = track("gpx");
    EXPECT_EQ(xmlFault(text, "gpx", "http://www.topografix.com/GPX/1/1", gpxRules()), "") << text;
    EXPECT_EQ(countOf(text, "<trkseg>"), 3U);
    EXPECT_EQ(countOf(text, "<trkpt "), positions().size());
    EXPECT_NE(text.find("lat=\"-33.500000000\" lon=\"-151.250000000\"><ele>460.0000</ele>"
                        "<time>2026-01-04T00:01:22.000Z</time>"),
              std::string::npos);
    EXPECT_NE(text.find("lon=\"-180.000000000\""), std::string::npos);
}

TEST(Track, KmlFollowsItsSchema)
{
    const std::string text = track("kml");
    EXPECT_EQ(xmlFault(text, "kml", "http://www.opengis.net/kml/2.2", kmlRules()), "") << text;
    // Two modes in a row, and three points that have no neighbour: one without an undulation.
    EXPECT_EQ(countOf(text, "<LineString>"), 2U);
    EXPECT_EQ(countOf(text, "<Point>"), 3U);
    // The line of the second mode begins where that of the first ends.
    EXPECT_NE(text.find("-151.250100000,-33.500100000,460.0000\n-151.250200000,-33.500200000,460."
                        "0000\n</coordinates></LineString>"),
              std::string::npos);
}

TEST(Track, RulesFindFaults)
{
    const std::string gpx = track("gpx");
    const std::string kml = track("kml");
    const struct {
        const char* from;
        const char* to;
    } changes[] = {
        {"<ele>460.0000</ele>", ""},    {"</trkseg>", ""},       {"<fix>", "<sat>1</sat><fix>"},
        {"lat=\"-33.5", "lat=\"-93.5"}, {"dgps", "rtk"},         {"lon=\"-180.0", "lon=\"180.0"},
        {"T00:01", "T24:01"},           {"version=\"1.1\"", ""}, {"GPX/1/1\" xm", "GPX/1/0\" xm"}};
    for (const auto& [from, to] : changes) {
        std::string changed = gpx;
        ASSERT_NE(changed.find(from), std::string::npos) << from;
        changed.replace(changed.find(from), std::strlen(from), to);
        const bool isFine = std::string_view(to).empty() && std::string_view(from).front() == '<' &&
                            std::string_view(from) != "</trkseg>";
        EXPECT_EQ(xmlFault(changed, "gpx", "http://www.topografix.com/GPX/1/1", gpxRules()).empty(),
                  isFine)
            << from;
    }
    for (const auto& [from, to] :
         {std::pair{"<Document>", "<Folder>"}, std::pair{"absolute", "above"},
          std::pair{"-33.500000000", "-33.5 "}, std::pair{"ff0000ff", "red"}}) {
        std::string changed = kml;
        ASSERT_NE(changed.find(from), std::string::npos) << from;
        changed.replace(changed.find(from), std::strlen(from), to);
        EXPECT_NE(xmlFault(changed, "kml", "http://www.opengis.net/kml/2.2", kmlRules()), "")
            << from;
    }
}

TEST(Track, GeoJsonFollowsItsRfc)
{
    const json document = json::parse(track("geojson"));
    EXPECT_EQ(document.at("type"), "FeatureCollection");
    EXPECT_FALSE(document.contains("crs"));
    const std::vector<Fixed> expected = positions();
    // Lines follow the points: up to the epoch without a position, and after the gap.
    ASSERT_EQ(document.at("features").size(), expected.size() + 2);
    for (size_t i = 0; i < 2; ++i) {
        const json& line = document["features"][expected.size() + i];
        EXPECT_EQ(line.at("geometry").at("type"), "LineString");
        const json& places = line["geometry"].at("coordinates");
        ASSERT_EQ(places.size(), i == 0 ? 4U : 2U);
        EXPECT_EQ(line.at("properties").at("positions"), places.size());
        for (size_t k = 0; k < places.size(); ++k) {
            EXPECT_EQ(places[k],
                      document["features"][i == 0 ? k : k + 5]["geometry"]["coordinates"]);
        }
    }
    for (size_t i = 0; i < expected.size(); ++i) {
        const json& feature = document["features"][i];
        EXPECT_EQ(feature.at("type"), "Feature");
        EXPECT_TRUE(feature.at("properties").is_object());
        EXPECT_EQ(feature.at("geometry").at("type"), "Point");
        const json& place = feature["geometry"].at("coordinates");
        ASSERT_EQ(place.size(), 3U);
        EXPECT_NEAR(place[0].get<double>(), expected[i].longitude, 1e-9);
        EXPECT_NEAR(place[1].get<double>(), expected[i].latitude, 1e-9);
        EXPECT_EQ(place[2], 500.0);
        EXPECT_EQ(feature["properties"].contains("undulation"), expected[i].undulation > 0);
    }
}

TEST(Track, SentencesHaveTheirChecksums)
{
    const std::vector<std::string> lines = linesOf(track("nmea"));
    ASSERT_EQ(lines.size(), drive.size() * 3);
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        ASSERT_EQ(line.back(), '\r');
        const size_t star = line.find('*');
        ASSERT_EQ(star, line.size() - 4);
        int sum = 0;
        for (size_t place = 1; place < star; ++place)
            sum ^= line[place];
        EXPECT_EQ(std::stoi(line.substr(star + 1, 2), nullptr, 16), sum) << line;
        const std::vector<std::string> cells = cellsOf(line.substr(0, star));
        const Fixed& at = drive[i / 3];
        constexpr const char* kinds[] = {"$GNGGA", "$GNRMC", "$GNZDA"};
        constexpr size_t counts[] = {15, 14, 7};
        EXPECT_EQ(cells[0], kinds[i % 3]);
        ASSERT_EQ(cells.size(), counts[i % 3]) << line;
        if (i % 3 == 2)
            continue;
        const std::string* const place = &cells[i % 3 == 0 ? 2 : 3];
        if (at.mode == 0) {
            EXPECT_EQ(place[0] + place[1] + place[2] + place[3], "");
            EXPECT_EQ(i % 3 == 0 ? cells[6] : cells[2], i % 3 == 0 ? "0" : "V");
            continue;
        }
        const auto angle = [](const std::string& text, size_t width) {
            return std::stod(text.substr(0, width)) + std::stod(text.substr(width)) / 60;
        };
        ASSERT_LT(std::stod(place[0].substr(2)), 60);
        EXPECT_NEAR(angle(place[0], 2), std::fabs(at.latitude), 1e-9);
        EXPECT_NEAR(angle(place[2], 3), std::fabs(at.longitude), 1e-9);
        EXPECT_EQ(place[1], at.latitude < 0 ? "S" : "N");
        EXPECT_EQ(place[3], at.longitude < 0 ? "W" : "E");
    }
    EXPECT_EQ(lines[0], "$GNGGA,000122.00,3330.0000000,S,15115.0000000,W,4,09,,460.000,M,40.000,M,"
                        "1.2,0077*77\r");
    EXPECT_EQ(lines[1],
              "$GNRMC,000122.00,A,3330.0000000,S,15115.0000000,W,6.873,225.00,040126,,,R,V*1B\r");
    EXPECT_EQ(lines[2], "$GNZDA,000122.00,04,01,2026,00,00*7A\r");
}

// An epoch waits for its dilutions as long as the one before had any, once the source of the track
// is chosen.
TEST(Track, SentencesHaveTheDilutionsOfTheirEpoch)
{
    std::string lines;
    for (int second = 100; second <= 113; ++second) {
        lines += blockOf({second, 4, -33.5, -151.25});
        if (second == 111)
            continue;
        lines += json({{"block", "DOP2"},
                       {"fields",
                        {{"TOW", second * 1000},
                         {"WNc", 2400},
                         {"PDOP", 2.5},
                         {"HDOP", 1.25},
                         {"VDOP", 2.17}}}})
                     .dump() +
                 "\n";
    }
    std::string found;
    for (const std::string& line : linesOf(track("nmea", runTool({"encode", "-"}, lines).output))) {
        if (line.rfind("$GNGGA", 0) == 0)
            found += cellsOf(line)[8] + ";";
        if (line.rfind("$GNGSA", 0) == 0)
            found += line;
    }
    const std::string epoch = "1.25;$GNGSA,A,3,,,,,,,,,,,,,2.50,1.25,2.17*19\r";
    std::string expected;
    for (int second = 100; second <= 110; ++second)
        expected += epoch;
    EXPECT_EQ(found, expected + ";;" + epoch);
}

namespace
{

/// All rows of a query, cells separated by bars.
std::vector<std::string> rowsOf(const std::string& file, const char* query)
{
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(database, query, -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    std::vector<std::string> rows;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        std::string& row = rows.emplace_back();
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            const auto* text = static_cast<const char*>(sqlite3_column_blob(statement, i));
            row += i == 0 ? "" : "|";
            row.append(text ? text : "", static_cast<size_t>(sqlite3_column_bytes(statement, i)));
        }
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return rows;
}

} // namespace

TEST(Track, GeoPackageReadsBack)
{
    const TemporaryFolder folder;
    const std::string file = folder.fileName("drive.gpkg");
    const ToolRun run = runTool({"track", "--format", "gpkg", "-o", file.c_str(), "-"}, driveLog());
    ASSERT_EQ(run.status, 0) << run.words;
    using Rows = std::vector<std::string>;
    EXPECT_EQ(rowsOf(file, "PRAGMA application_id"), Rows{std::to_string(0x47504B47)});
    EXPECT_EQ(rowsOf(file, "PRAGMA user_version"), Rows{"10300"});
    EXPECT_EQ(rowsOf(file, "PRAGMA integrity_check"), Rows{"ok"});
    EXPECT_EQ(rowsOf(file, "PRAGMA foreign_key_check"), Rows{});
    EXPECT_EQ(rowsOf(file, "SELECT srs_id FROM gpkg_spatial_ref_sys ORDER BY srs_id"),
              (Rows{"-1", "0", "4326"}));
    EXPECT_EQ(rowsOf(file, "SELECT table_name, data_type, srs_id, min_x, max_x FROM gpkg_contents"),
              (Rows{"positions|features|4326|-151.2505|180.0",
                    "positions_lines|features|4326|-151.2505|180.0"}));
    EXPECT_EQ(rowsOf(file, "SELECT * FROM gpkg_geometry_columns"),
              (Rows{"positions|geom|POINT|4326|2|0", "positions_lines|geom|LINESTRING|4326|2|0"}));
    EXPECT_EQ(rowsOf(file, "SELECT count(*) FROM gpkg_contents WHERE last_change LIKE "
                           "'____-__-__T__:__:__.___Z'"),
              Rows{"2"});
    EXPECT_EQ(rowsOf(file, "SELECT utc, utc_end, positions FROM positions_lines ORDER BY fid"),
              (Rows{"2026-01-04T00:01:22.000Z|2026-01-04T00:01:25.000Z|4",
                    "2026-01-04T00:06:22.000Z|2026-01-04T00:06:23.000Z|2"}));
    const std::vector<std::string> points = rowsOf(file, "SELECT geom FROM positions ORDER BY fid");
    const std::vector<Fixed> expected = positions();
    ASSERT_EQ(points.size(), expected.size());
    for (size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(points[i].size(), 37U);
        EXPECT_EQ(points[i].substr(0, 13),
                  std::string("GP\0\1\xe6\x10\0\0\1\xe9\3\0\0", 13)); // little-endian, point with Z
        double place[3];
        std::memcpy(place, points[i].data() + 13, sizeof place);
        EXPECT_NEAR(place[0], expected[i].longitude, 1e-12);
        EXPECT_NEAR(place[1], expected[i].latitude, 1e-12);
        EXPECT_EQ(place[2], 500);
    }
    const std::string line = rowsOf(file, "SELECT geom FROM positions_lines ORDER BY fid")[0];
    ASSERT_EQ(line.size(), 17U + 4 * 24);
    EXPECT_EQ(line.substr(0, 17), std::string("GP\0\1\xe6\x10\0\0\1\xea\3\0\0\4\0\0\0", 17));
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(line.substr(17 + i * 24, 24), points[i].substr(13)) << i;
    EXPECT_EQ(rowsOf(file, "SELECT utc, mode, satellites, height_above_geoid FROM positions "
                           "WHERE fid = 1"),
              Rows{"2026-01-04T00:01:22.000Z|RTK fixed|9|460.0"});
    EXPECT_EQ(rowsOf(file, "SELECT undulation IS NULL FROM positions WHERE fid = 7"), Rows{"1"});
}

TEST(Track, SelectsAsAllCommandsDo)
{
    const std::string log = driveLog();
    const auto linesWith = [&log](const QStringList& more) {
        const ToolRun run = runTool(QStringList{"track"} + more + QStringList{"-"}, log);
        return linesOf(run.output).size() - 1;
    };
    EXPECT_EQ(linesWith({"--from", "2400:102"}), 5U);
    EXPECT_EQ(linesWith({"--to", "2400:102"}), 2U);
    EXPECT_EQ(linesWith({"--interval", "100"}), 2U);
    EXPECT_EQ(linesWith({"--where", "PVTMode == \"RTK float\""}), 2U);
    EXPECT_EQ(linesWith({"--limit", "3"}), 3U);
}

TEST(Track, ChoosesASource)
{
    const TemporaryFolder folder;
    const std::string file = folder.fileName("log.tqx");
    ASSERT_EQ(runTool({"simulate", "--duration", "20", "-o", file.c_str()}).status, 0);
    const ToolRun best = runTool({"track", file.c_str()});
    EXPECT_EQ(best.status, 0);
    EXPECT_NE(best.words.find("positions of PVTGeodetic2 (GNSS, geodetic); there are also those of "
                              "PVTCartesian2, see --source"),
              std::string::npos)
        << best.words;
    EXPECT_EQ(linesOf(best.output).size(), 21U);
    const ToolRun other = runTool({"track", "--source", "pvtcartesian2", file.c_str()});
    EXPECT_EQ(other.words, "");
    const std::vector<std::string> here = linesOf(best.output);
    const std::vector<std::string> there = linesOf(other.output);
    ASSERT_EQ(there.size(), 21U);
    for (size_t i = 1; i < here.size(); ++i) {
        for (const size_t column : {6U, 7U}) {
            EXPECT_NEAR(std::stod(cellsOf(here[i])[column]), std::stod(cellsOf(there[i])[column]),
                        2e-9);
        }
    }
    EXPECT_EQ(runTool({"track", "-"}, testData("tool/data/cut.tqx")).status, 1);
    const ToolRun wrong = runTool({"track", "--source", "PVTGeodetic3", file.c_str()});
    EXPECT_EQ(wrong.status, 1);
    EXPECT_NE(wrong.words.find("PVTGeodetic2"), std::string::npos) << wrong.words;
    EXPECT_EQ(runTool({"track", "--format", "gpkg", file.c_str()}).status, 1);
}

TEST(Track, ReadsFilesThatAreCompressedOrDamaged)
{
    const TemporaryFolder folder;
    const std::string sound = folder.fileName("sound.tqx");
    const std::string damaged = folder.fileName("damaged.tqx");
    runTool({"simulate", "--duration", "300", "-o", sound.c_str()});
    runTool({"simulate", "--duration", "300", "--damage", "-o", damaged.c_str()});
    const std::vector<std::string> all = linesOf(runTool({"track", "-q", sound.c_str()}).output);
    const ToolRun run = runTool({"track", "--strict", "-q", damaged.c_str()});
    EXPECT_EQ(run.status, 2);
    const std::vector<std::string> left = linesOf(run.output);
    EXPECT_GT(left.size(), 250U);
    EXPECT_LT(left.size(), all.size());
    for (const std::string& line : left)
        EXPECT_NE(std::find(all.begin(), all.end(), line), all.end()) << line;
    std::system(("gzip -k " + sound).c_str());
    const ToolRun both = runTool({"track", "-q", (sound + ".gz").c_str(), sound.c_str()});
    EXPECT_EQ(linesOf(both.output).size(), 2 * all.size() - 1);
}
