#pragma once

#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/observation/EpochSelection.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/rinex/LogSurvey.h"
#include "tqx/gnss/rinex/RinexOptions.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// Which RINEX files are wanted.
struct RinexRequest {
    RinexOptions options;
    EpochSelection selection;
    std::string folder; ///< that the files are written into; it must exist
    bool isCompressed = false;
};

/// The RINEX files of a log: one of observations for each antenna, with the pulses on inputs as
/// events, and one of navigation messages. Names are the long ones. The log is read twice, since
/// headers need what the whole of it says:
///
///     RinexFiles files(request);
///     while (first.next(block))
///         if (RinexFiles::isSurveyed(block.getNumber()) && decoder.decode(block) > 0)
///             files.survey(decoder.getDecoded());
///     files.endSurvey();
///     while (files.hasObservations() && second.next(block))
///         if (RinexFiles::isWritten(block.getNumber()) && decoder.decode(block) > 0)
///             files.write(decoder.getDecoded());
///     files.finishObservations();
///     files.writeNavigation();
///
/// Files appear under their names when they are complete. Errors are DataErrors: "<path>:
/// <reason>".
class TQX_GNSS_API RinexFiles
{
public:
    explicit RinexFiles(RinexRequest request);

    /// Removes what is not complete.
    ~RinexFiles();
    RinexFiles(const RinexFiles&) = delete;
    RinexFiles& operator=(const RinexFiles&) = delete;

    /// Whether the first pass needs blocks of this number.
    static bool isSurveyed(uint16_t blockNumber);

    /// A block of the first pass that decoded, in the order of the log.
    void survey(const DecodedBlock& decoded);

    /// The first pass has ended: creates the observation files. Throws DataError.
    void endSurvey();

    /// What the first pass has found.
    const LogSurvey& getSurvey() const;

    /// What of the measurements was not made into observations, after the first pass.
    const ObservationLosses& getLosses() const;
    /// What of the navigation blocks has no place in files.
    const NavigationLosses& getNavigationLosses() const;
    /// How many ephemerides of selected satellites have no record in the wanted version: those of
    /// civil messages in 3.05.
    size_t countWithoutRecord() const;

    /// Whether there are observation files, for which the second pass is needed.
    bool hasObservations() const;

    /// Whether the second pass needs blocks of this number.
    static bool isWritten(uint16_t blockNumber);

    /// A block of the second pass that decoded. Throws DataError.
    void write(const DecodedBlock& decoded);

    /// The second pass has ended: completes the observation files and returns their paths, by
    /// antenna. Throws DataError.
    std::vector<std::string> finishObservations();

    /// Writes the file of navigation messages and returns its path; "" when there are no
    /// ephemerides that are wanted. After endSurvey(). Throws DataError.
    std::string writeNavigation();

private:
    class Content;
    std::unique_ptr<Content> m_content;
};

} // namespace tqx
