#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/rinex/LogSurvey.h"
#include "tqx/gnss/rinex/RinexOptions.h"
#include "tqx/gnss/rinex/SetUp.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_gnss_export.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// The observation file of one antenna in RINEX 3.05 or 4.02 (public documents of IGS and RTCM).
/// Times and observations are those of the receiver: millisecond jumps stay in both, RCV CLOCK OFFS
/// APPL is 0, and the offset of an epoch is written where it is known.
///
///     ObservationFile file(survey, antenna, options);
///     file.writeHeader(out);
///     file.write(out, epoch);      // for each, in the order of their times
class TQX_GNSS_API ObservationFile
{
public:
    /// `antenna` is one of the survey's. The survey must have seen all epochs that are written; it
    /// is needed only here.
    ObservationFile(const LogSurvey& survey, uint8_t antenna, const RinexOptions& options);

    /// Whether there is anything to write: all signals may be without a code in this version.
    bool hasSignals() const { return m_hasSignals; }

    void writeHeader(Buffer& out) const;

    /// What the file name is made from.
    const SetUp& getSetUp() const { return m_setUp; }

    /// Reports a changed installation; an event before the next epoch will say so.
    void change(const SetUp& setUp);

    /// Writes a pulse on an input of the receiver as an external event. Call it between the epochs
    /// before and after. The texts name the input and the edge, and may be empty.
    void writeEvent(Buffer& out, GnssMillis time, uint32_t nanoseconds, std::string_view input,
                    std::string_view edge) const;

    /// Writes the observations of this antenna; nothing when the epoch has none.
    void write(Buffer& out, const ObservationEpoch& epoch);

private:
    /// A signal with the values listed in the header.
    struct Column {
        SignalCode code;
        std::array<bool, valueKinds> kinds;
        size_t width; ///< characters of its values
    };
    struct Row {
        SatelliteId satellite;
        std::vector<const Observation*> observations; ///< by column
    };

    void addIdentity(Buffer& out) const;
    void addInstallation(Buffer& out, const SetUp& setUp) const;
    void addTypes(Buffer& out) const;
    void addTimes(Buffer& out) const;
    void addPhases(Buffer& out) const;
    void addGlonass(Buffer& out) const;
    void addCounts(Buffer& out) const;
    void writeChange(Buffer& out, GnssMillis time);
    void writeRow(Buffer& out, const Row& row) const;
    static char* writeCells(char* cell, const Column& column, const Observation& observation);
    size_t collect(const ObservationEpoch& epoch);

    RinexOptions m_options;
    uint8_t m_antenna;
    AntennaSurvey m_survey;
    std::optional<LogSurvey::Place> m_place;
    std::optional<LeapSecondsInfo> m_leapSeconds;
    SetUp m_setUp;   ///< that the header or the last event says
    SetUp m_current; ///< that the log says now
    bool m_hasSignals = false;
    std::array<std::vector<Column>, systemCount> m_columns;
    std::array<std::array<int8_t, 260>, systemCount> m_places; ///< of a code among the columns
    std::vector<Row> m_rows;                                   ///< of the current epoch
    std::array<uint16_t, systemCount* 256> m_rowOf = {};       ///< 1 and more, by satellite
};

} // namespace tqx
