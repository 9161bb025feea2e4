#pragma once

#include "RinexText.h"

#include <Eigen/Core>

#include <map>
#include <optional>
#include <string>

/// Positions from RINEX files alone, by the public formulas of the interface documents.
namespace rinex
{

struct FixResult {
    Eigen::Vector3d position = Eigen::Vector3d::Zero();
    Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero();
    size_t satellites = 0;
};

/// Weighted least squares from ionosphere-free codes, with a clock for each system.
class FixFromRinex
{
public:
    explicit FixFromRinex(const NavigationFile& file);

    /// From the systems of `letters`; nothing with too few satellites.
    std::optional<FixResult> solve(const Epoch& epoch, const std::string& letters) const;

private:
    struct Sent {
        Eigen::Vector3d position;
        double clock; ///< seconds by which the satellite's is ahead, of the system's own pair
        const NavigationRecord* record;
    };
    std::optional<Sent> sentBy(const std::string& satellite, double time) const;

    std::map<std::string, std::vector<NavigationRecord>> m_records;
};

Eigen::Vector3d placeOnEarth(double latitude, double longitude, double height);

} // namespace rinex
