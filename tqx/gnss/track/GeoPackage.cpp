#include "tqx/gnss/track/GeoPackage.h"

#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/log/DataError.h"
#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

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
BEGIN;
)";

/// Header of a geometry without an envelope, and a point with or without a height in well-known
/// binary, all of it little-endian.
class PointGeometry
{
public:
    PointGeometry(double x, double y, double z)
    {
        constexpr uint32_t point = 1;
        constexpr uint32_t pointWithHeight = 1001;
        const bool hasHeight = std::isfinite(z);
        put("GP", 2);
        number(uint8_t{0}); // version
        number(uint8_t{1}); // little-endian
        number(uint32_t{wgs84});
        number(uint8_t{1}); // little-endian
        number(hasHeight ? pointWithHeight : point);
        real(x);
        real(y);
        if (hasHeight)
            real(z);
    }

    const uint8_t* data() const { return m_bytes.data(); }
    int size() const { return static_cast<int>(m_size); }

private:
    void put(const void* bytes, size_t size)
    {
        std::memcpy(m_bytes.data() + m_size, bytes, size);
        m_size += size;
    }
    template<typename T>
    void number(T value)
    {
        for (size_t i = 0; i < sizeof(T); ++i)
            m_bytes[m_size++] = static_cast<uint8_t>(value >> 8 * i);
    }
    void real(double value)
    {
        uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        number(bits);
    }

    std::array<uint8_t, 40> m_bytes = {};
    size_t m_size = 0;
};

} // namespace

/// The open file, and the statement that adds a position.
class GeoPackage::Database
{
public:
    Database(const std::string& path, const std::string& table) : m_path(path), m_table(table)
    {
        std::remove(path.c_str());
        check(sqlite3_open_v2(path.c_str(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                              nullptr));
        // The file is complete or removed, so that nothing needs to be undone.
        run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;");
        run(tables);
        run(fmt::format(featureTable, table, wgs84));
        const std::string insert = fmt::format(
            R"(INSERT INTO "{}" VALUES (NULL,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?))", table);
        check(sqlite3_prepare_v2(m_handle, insert.c_str(), -1, &m_insert, nullptr));
    }

    ~Database()
    {
        close();
        if (!m_isFinished)
            std::remove(m_path.c_str());
    }

    void add(const Position& position);
    void finish();

private:
    void check(int result)
    {
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            throw DataError(fmt::format("{}: {}", m_path,
                                        m_handle ? sqlite3_errmsg(m_handle) : "out of memory"));
        }
    }
    void run(const std::string& statements)
    {
        check(sqlite3_exec(m_handle, statements.c_str(), nullptr, nullptr, nullptr));
    }
    int close()
    {
        sqlite3_finalize(m_insert);
        const int result = sqlite3_close(m_handle);
        m_insert = nullptr;
        m_handle = nullptr;
        return result;
    }
    void bind(std::string_view text)
    {
        check(text.empty() ? sqlite3_bind_null(m_insert, ++m_column)
                           : sqlite3_bind_text(m_insert, ++m_column, text.data(),
                                               static_cast<int>(text.size()), SQLITE_TRANSIENT));
    }
    void bind(double value)
    {
        check(std::isfinite(value) ? sqlite3_bind_double(m_insert, ++m_column, value)
                                   : sqlite3_bind_null(m_insert, ++m_column));
    }
    void bind(int value)
    {
        check(value >= 0 ? sqlite3_bind_int(m_insert, ++m_column, value)
                         : sqlite3_bind_null(m_insert, ++m_column));
    }

    std::string m_path;
    std::string m_table;
    sqlite3* m_handle = nullptr;
    sqlite3_stmt* m_insert = nullptr;
    int m_column = 0; ///< the last one that was bound
    bool m_isFinished = false;
    bool m_isEmpty = true;
    double m_west = 0, m_south = 0, m_east = 0, m_north = 0;
};

void GeoPackage::Database::add(const Position& position)
{
    const PointGeometry geometry(position.longitude, position.latitude, position.height);
    m_column = 1;
    check(
        sqlite3_bind_blob(m_insert, m_column, geometry.data(), geometry.size(), SQLITE_TRANSIENT));
    bind(std::string_view(xmlTime(position.time)));
    bind(std::string_view(dateText(position.time)));
    bind(std::string_view(position.source->name));
    bind(position.mode);
    bind(position.aboveGeoid());
    bind(position.undulation);
    bind(levelText(position.level));
    bind(position.horizontalAccuracy);
    bind(position.verticalAccuracy);
    bind(position.spatialAccuracy);
    bind(position.satellites);
    bind(position.correctionAge);
    bind(position.reference);
    bind(position.north);
    bind(position.east);
    bind(position.up);
    bind(position.heading);
    bind(position.pitch);
    bind(position.roll);
    bind(position.datum);
    check(sqlite3_step(m_insert));
    check(sqlite3_reset(m_insert));
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
    if (!m_isEmpty) {
        run(fmt::format("UPDATE gpkg_contents SET min_x={}, min_y={}, max_x={}, max_y={};", m_west,
                        m_south, m_east, m_north));
    }
    run("COMMIT;");
    const int result = close();
    if (result != SQLITE_OK)
        throw DataError(m_path + ": " + sqlite3_errstr(result));
    m_isFinished = true;
}

GeoPackage::GeoPackage(const std::string& path, const std::string& table)
    : m_database(std::make_unique<Database>(path, table))
{
}

GeoPackage::~GeoPackage() = default;

void GeoPackage::add(const Position& position)
{
    if (position.fix != Fix::None)
        m_database->add(position);
}

void GeoPackage::finish()
{
    m_database->finish();
}

} // namespace tqx
