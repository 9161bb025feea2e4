#include "tqx/gnss/track/GeoPackage.h"

#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/track/Segments.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/log/sqlite/SqlDatabase.h"
#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

namespace tqx
{

namespace
{

constexpr int wgs84 = 4326;

/// Identifies the format and its version 1.3; what every package must have, and the three rows that
/// every table of reference systems must have.
constexpr const char* tables = R"(
PRAGMA application_id = 0x47504B47;
PRAGMA user_version = 10300;
CREATE TABLE gpkg_spatial_ref_sys (
  srs_name TEXT NOT NULL, srs_id INTEGER NOT NULL PRIMARY KEY, organization TEXT NOT NULL,
  organization_coordsys_id INTEGER NOT NULL, definition TEXT NOT NULL, description TEXT);
INSERT INTO gpkg_spatial_ref_sys VALUES
  ('Undefined Cartesian SRS', -1, 'NONE', -1, 'undefined', 'undefined Cartesian coordinates'),
  ('Undefined geographic SRS', 0, 'NONE', 0, 'undefined', 'undefined geographic coordinates'),
  ('WGS 84 geodetic', 4326, 'EPSG', 4326, 'GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563,AUTHORITY["EPSG","7030"]],AUTHORITY["EPSG","6326"]],PRIMEM["Greenwich",0,AUTHORITY["EPSG","8901"]],UNIT["degree",0.0174532925199433,AUTHORITY["EPSG","9122"]],AUTHORITY["EPSG","4326"]]', 'longitude and latitude in degrees on the WGS 84 ellipsoid');
CREATE TABLE gpkg_contents (
  table_name TEXT NOT NULL PRIMARY KEY, data_type TEXT NOT NULL, identifier TEXT UNIQUE,
  description TEXT DEFAULT '',
  last_change DATETIME NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%fZ','now')),
  min_x DOUBLE, min_y DOUBLE, max_x DOUBLE, max_y DOUBLE, srs_id INTEGER,
  CONSTRAINT fk_gc_r_srs_id FOREIGN KEY (srs_id) REFERENCES gpkg_spatial_ref_sys(srs_id));
CREATE TABLE gpkg_geometry_columns (
  table_name TEXT NOT NULL, column_name TEXT NOT NULL, geometry_type_name TEXT NOT NULL,
  srs_id INTEGER NOT NULL, z TINYINT NOT NULL, m TINYINT NOT NULL,
  CONSTRAINT pk_geom_cols PRIMARY KEY (table_name, column_name),
  CONSTRAINT uk_gc_table_name UNIQUE (table_name),
  CONSTRAINT fk_gc_tn FOREIGN KEY (table_name) REFERENCES gpkg_contents(table_name),
  CONSTRAINT fk_gc_srs FOREIGN KEY (srs_id) REFERENCES gpkg_spatial_ref_sys(srs_id));
)";

constexpr const char* featureTable = R"(
CREATE TABLE "{0}" (
  fid INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, geom POINT, utc DATETIME, gps_time TEXT,
  source TEXT, mode TEXT, height_above_geoid DOUBLE, undulation DOUBLE, accuracy_level TEXT,
  horizontal_accuracy DOUBLE, vertical_accuracy DOUBLE, spatial_accuracy DOUBLE,
  satellites INTEGER, correction_age DOUBLE, reference INTEGER, velocity_north DOUBLE,
  velocity_east DOUBLE, velocity_up DOUBLE, heading DOUBLE, pitch DOUBLE, roll DOUBLE, datum TEXT);
INSERT INTO gpkg_contents (table_name, data_type, identifier, description, srs_id)
  VALUES ('{0}', 'features', '{0}', 'positions of a receiver, heights above the ellipsoid', {1});
INSERT INTO gpkg_geometry_columns VALUES ('{0}', 'geom', 'POINT', {1}, 2, 0);
)";

constexpr const char* lineTable = R"(
CREATE TABLE "{0}" (
  fid INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, geom LINESTRING, utc DATETIME,
  utc_end DATETIME, positions INTEGER);
INSERT INTO gpkg_contents (table_name, data_type, identifier, description, srs_id)
  VALUES ('{0}', 'features', '{0}', 'the track, a line up to each gap', {1});
INSERT INTO gpkg_geometry_columns VALUES ('{0}', 'geom', 'LINESTRING', {1}, 2, 0);
BEGIN;
)";

/// Header of a geometry without an envelope, and a point or a line with or without heights in
/// well-known binary, all of it little-endian.
class Geometry
{
public:
    static Geometry point(double x, double y, double z)
    {
        Geometry geometry(1, std::isfinite(z));
        geometry.place(x, y, z);
        return geometry;
    }

    /// Of points with three coordinates each.
    static Geometry line(const std::vector<double>& coordinates)
    {
        bool hasHeights = true;
        for (size_t i = 2; i < coordinates.size(); i += 3)
            hasHeights = hasHeights && std::isfinite(coordinates[i]);
        Geometry geometry(2, hasHeights);
        geometry.number(static_cast<uint32_t>(coordinates.size() / 3));
        for (size_t i = 0; i < coordinates.size(); i += 3)
            geometry.place(coordinates[i], coordinates[i + 1], coordinates[i + 2]);
        return geometry;
    }

    const std::vector<uint8_t>& bytes() const { return m_bytes; }

private:
    Geometry(uint32_t type, bool hasHeights) : m_hasHeights(hasHeights)
    {
        constexpr uint32_t withHeights = 1000;
        m_bytes = {'G', 'P', 0, 1}; // version 0, little-endian
        number(uint32_t{wgs84});
        number(uint8_t{1}); // little-endian
        number(type + (hasHeights ? withHeights : 0));
    }

    template<typename T>
    void number(T value)
    {
        for (size_t i = 0; i < sizeof(T); ++i)
            m_bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
    }
    void real(double value)
    {
        uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        number(bits);
    }
    void place(double x, double y, double z)
    {
        real(x);
        real(y);
        if (m_hasHeights)
            real(z);
    }

    bool m_hasHeights;
    std::vector<uint8_t> m_bytes;
};

} // namespace

/// The open file, and the statements that add a position and a line.
class GeoPackage::Database
{
public:
    Database(const std::string& path, const std::string& table) : m_path(path), m_table(table)
    {
        std::remove(path.c_str());
        try {
            m_database = SqlDatabase::create(path, path);
            m_database->execute(tables);
            m_database->execute(fmt::format(featureTable, table, wgs84));
            m_database->execute(fmt::format(lineTable, lines(), wgs84));
            m_insert = m_database->prepare(fmt::format(
                R"(INSERT INTO "{}" VALUES (NULL,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?))",
                table));
            m_insertLine = m_database->prepare(
                fmt::format(R"(INSERT INTO "{}" VALUES (NULL,?,?,?,?))", lines()));
        } catch (...) {
            remove();
            throw;
        }
    }

    ~Database()
    {
        if (m_database)
            remove();
    }

    void add(const Position& position);
    void finish();

private:
    std::string lines() const { return m_table + "_lines"; }
    void addLine();

    void close()
    {
        m_insert.reset();
        m_insertLine.reset();
        m_database.reset();
    }
    void remove()
    {
        close();
        std::remove(m_path.c_str());
    }

    // Unknown values stay NULL. Texts must stay valid until the row is inserted.
    void set(std::string_view text)
    {
        ++m_column;
        if (!text.empty())
            m_insert->setText(m_column, text);
    }
    void set(double value)
    {
        ++m_column;
        if (std::isfinite(value))
            m_insert->setReal(m_column, value);
    }
    void set(int value)
    {
        ++m_column;
        if (value >= 0)
            m_insert->setInteger(m_column, value);
    }

    std::string m_path;
    std::string m_table;
    std::unique_ptr<SqlDatabase> m_database; ///< null once it is complete
    std::unique_ptr<SqlInsert> m_insert;
    std::unique_ptr<SqlInsert> m_insertLine;
    Segments m_segments;
    std::vector<double> m_line; ///< coordinates of the current line
    GnssMillis m_lineStart = 0;
    GnssMillis m_lineEnd = 0;
    int m_column = 0; ///< the last one that was set
    bool m_isEmpty = true;
    double m_west = 0, m_south = 0, m_east = 0, m_north = 0;
};

/// The current line, unless it is a single point.
void GeoPackage::Database::addLine()
{
    constexpr size_t dimensions = 3;
    if (m_line.size() > dimensions) {
        const std::string start = xmlTime(m_lineStart);
        const std::string end = xmlTime(m_lineEnd);
        const Geometry geometry = Geometry::line(m_line);
        m_insertLine->setBytes(1, geometry.bytes().data(), geometry.bytes().size());
        m_insertLine->setText(2, start);
        m_insertLine->setText(3, end);
        m_insertLine->setInteger(4, static_cast<int64_t>(m_line.size() / dimensions));
        m_insertLine->run();
    }
    m_line.clear();
}

void GeoPackage::Database::add(const Position& position)
{
    const bool goesOn = m_segments.goesOn(position);
    if (position.fix == Fix::None)
        return;
    if (!goesOn) {
        addLine();
        m_lineStart = position.time;
    }
    m_lineEnd = position.time;
    m_line.insert(m_line.end(), {position.longitude, position.latitude, position.height});
    const Geometry geometry =
        Geometry::point(position.longitude, position.latitude, position.height);
    const std::string utc = xmlTime(position.time);
    const std::string gpsTime = dateText(position.time);
    m_column = 1;
    m_insert->setBytes(m_column, geometry.bytes().data(), geometry.bytes().size());
    set(std::string_view(utc));
    set(std::string_view(gpsTime));
    set(std::string_view(position.source->name));
    set(position.mode);
    set(position.aboveGeoid());
    set(position.undulation);
    set(levelText(position.level));
    set(position.horizontalAccuracy);
    set(position.verticalAccuracy);
    set(position.spatialAccuracy);
    set(position.satellites);
    set(position.correctionAge);
    set(position.reference);
    set(position.north);
    set(position.east);
    set(position.up);
    set(position.heading);
    set(position.pitch);
    set(position.roll);
    set(position.datum);
    m_insert->run();
    if (m_isEmpty) {
        m_west = m_east = position.longitude;
        m_south = m_north = position.latitude;
        m_isEmpty = false;
    }
    m_west = std::min(m_west, position.longitude);
    m_east = std::max(m_east, position.longitude);
    m_south = std::min(m_south, position.latitude);
    m_north = std::max(m_north, position.latitude);
}

void GeoPackage::Database::finish()
{
    addLine();
    if (!m_isEmpty) {
        m_database->execute(
            fmt::format("UPDATE gpkg_contents SET min_x={}, min_y={}, max_x={}, max_y={};", m_west,
                        m_south, m_east, m_north));
    }
    m_database->execute("COMMIT;");
    close();
}

GeoPackage::GeoPackage(const std::string& path, const std::string& table)
    : m_database(std::make_unique<Database>(path, table))
{
}

GeoPackage::~GeoPackage() = default;

void GeoPackage::add(const Position& position)
{
    m_database->add(position);
}

void GeoPackage::finish()
{
    m_database->finish();
}

} // namespace tqx
