#pragma once

#include "tqx/gnss/quality/Quality.h"
#include "tqx/log/text/Buffer.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace tqx::tool
{

/// The report of a log, or of several that are read as one.
struct LogReport {
    std::string name;
    quality::Quality quality;
    std::vector<std::string> failures; ///< parts of the requirement that do not hold
};

/// Appends a report for people: verdicts, findings, signals. Several are compared side by side,
/// with tables as wide as `width`.
void appendReportText(Buffer& out, const std::vector<LogReport>& reports, size_t width);

/// The reports as doc/report.md describes it. `requirement` is empty for none.
nlohmann::ordered_json reportJson(const std::vector<LogReport>& reports,
                                  const std::string& requirement);

/// Whether this build can write pages.
bool canWritePage();

/// Appends the reports as one self-contained page for a browser. Only if canWritePage().
void appendReportPage(Buffer& out, const std::vector<LogReport>& reports,
                      const std::string& requirement);

/// How the elevations of the satellites are known, and of how many observations; empty without any.
std::string elevationWords(const quality::Quality& quality);

/// Whole numbers without decimals, others with a sensible number.
std::string figureText(double value);

} // namespace tqx::tool
