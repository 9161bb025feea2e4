#include "tqx/gnss/observation/ObservationTable.h"

namespace tqx
{

namespace
{

const std::vector<RowWriter::Column>& columns()
{
    static const std::vector<RowWriter::Column> list = RowWriter::withTime({
        {"Satellite"},
        {"Signal"},
        {"Antenna"},
        {"Range", "meter"},
        {"Phase", "cycle"},
        {"Doppler", "hertz"},
        {"CN0", "decibelhertz"},
        {"LockTime", "second"},
        {"Lost"},
        {"HalfCycle"},
        {"Smoothed"},
        {"Channel"},
        {"RangeDeviation", "meter"},
        {"PhaseDeviation", "cycle"},
        {"Multipath", "meter"},
        {"Smoothing", "meter"},
        {"ClockBias", "second"},
    });
    return list;
}

} // namespace

ObservationTable::ObservationTable(RowFormat format) : m_rows(format, columns()) {}

void ObservationTable::write(Buffer& out, const ObservationEpoch& epoch)
{
    for (const Observation& observation : epoch.observations) {
        m_rows.begin(out);
        m_rows.time(out, epoch.time);
        m_rows.text(out, observation.satellite.text());
        const char code[] = {observation.code.band, observation.code.attribute};
        m_rows.text(out, {code, 2});
        m_rows.whole(out, observation.antenna);
        m_rows.fixed(out, observation.range, 3);
        m_rows.fixed(out, observation.phase, 4);
        m_rows.fixed(out, observation.doppler, 4);
        m_rows.fixed(out, observation.cn0, 2);
        m_rows.fixed(out, observation.lockTime, 3);
        m_rows.flag(out, observation.isLost);
        m_rows.flag(out, observation.isHalfCycle);
        m_rows.flag(out, observation.isSmoothed);
        if (isFdma(observation.signal)) {
            m_rows.whole(out, observation.channel);
        } else {
            m_rows.missing(out);
        }
        m_rows.fixed(out, observation.rangeDeviation, 3);
        m_rows.fixed(out, observation.phaseDeviation, 4);
        m_rows.fixed(out, observation.multipath, 3);
        m_rows.fixed(out, observation.smoothing, 3);
        m_rows.number(out, epoch.clockBias);
        m_rows.end(out);
    }
}

} // namespace tqx
