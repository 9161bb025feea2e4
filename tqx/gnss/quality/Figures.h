#pragma once

#include "tqx/gnss/quality/Quality.h"
#include "tqx_gnss_export.h"

#include <string_view>

namespace tqx::quality
{

/// A number of a report with a stable name.
struct TQX_GNSS_API Figure {
    const char* key;
    const char* unit;       ///< empty for counts and shares
    const char* definition; ///< one line

    /// One of both: what is the same for the whole log, or what each antenna has.
    double (*ofLog)(const Quality& quality);
    double (*ofAntenna)(const AntennaQuality& antenna);

    /// That of the log, or of the main antenna; NaN when it is not known.
    double value(const Quality& quality) const
    {
        return ofAntenna ? ofAntenna(quality) : ofLog(quality);
    }
};

/// All of them, in the order of reports.
TQX_GNSS_API const std::vector<Figure>& figures();

/// The figure of that name, null for others.
TQX_GNSS_API const Figure* findFigure(std::string_view key);

/// How an area of quality is rated.
enum class Grade : uint8_t { Unknown, Good, Fair, Poor };

/// "good"
TQX_GNSS_API const char* nameOf(Grade grade);

/// The rating of an area.
struct Verdict {
    const char* area = "";
    Grade grade = Grade::Unknown;
    std::string words;          ///< with the figures that count
    const char* threshold = ""; ///< when it is good, and when fair
};

/// A verdict for each area, in the order of reports.
TQX_GNSS_API std::vector<Verdict> judge(const Quality& quality);

} // namespace tqx::quality
