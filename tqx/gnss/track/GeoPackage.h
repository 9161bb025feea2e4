#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx_gnss_export.h"

#include <memory>
#include <string>

namespace tqx
{

/// A track as a GeoPackage 1.3 (OGC 12-128r17): a feature table of points in WGS84 with heights
/// above the ellipsoid and further columns for each position, and one of lines, which end where
/// there is no position and where the time runs back or has a gap.
class TQX_GNSS_API GeoPackage
{
public:
    /// Creates the file; one that exists is replaced. `table` names the feature table, of letters,
    /// digits and underscores; that of lines has "_lines" after it. Throws DataError when it cannot
    /// be created.
    GeoPackage(const std::string& path, const std::string& table);

    /// Removes the file again unless finish() was called.
    ~GeoPackage();
    GeoPackage(const GeoPackage&) = delete;
    GeoPackage& operator=(const GeoPackage&) = delete;

    /// Adds a position; one with Fix::None is left out and ends a line. Throws DataError when it
    /// cannot be written.
    void add(const Position& position);

    /// Completes the file. Throws DataError when it cannot be written.
    void finish();

private:
    class Database;
    std::unique_ptr<Database> m_database;
};

} // namespace tqx
