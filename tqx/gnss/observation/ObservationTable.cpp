#include "tqx/gnss/observation/ObservationTable.h"

namespace tqx
{

namespace
{

const std::vector<TableColumn>& columns()
{
    static const std::vector<TableColumn> list = TableRows::withTime({
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

ObservationTable::ObservationTable(TableTarget& target)
    : m_rows(target.open("observations", columns()))
{
}

void ObservationTable::write(const ObservationEpoch& epoch)
{
    for (const Observation& observation : epoch.observations) {
        m_rows->begin();
        m_rows->time(epoch.time);
        m_rows->text(observation.satellite.text());
        const char code[] = {observation.code.band, observation.code.attribute};
        m_rows->text({code, 2});
        m_rows->whole(observation.antenna);
        m_rows->fixed(observation.range, 3);
        m_rows->fixed(observation.phase, 4);
        m_rows->fixed(observation.doppler, 4);
        m_rows->fixed(observation.cn0, 2);
        m_rows->fixed(observation.lockTime, 3);
        m_rows->flag(observation.isLost);
        m_rows->flag(observation.isHalfCycle);
        m_rows->flag(observation.isSmoothed);
        if (isFdma(observation.signal)) {
            m_rows->whole(observation.channel);
        } else {
            m_rows->missing();
        }
        m_rows->fixed(observation.rangeDeviation, 3);
        m_rows->fixed(observation.phaseDeviation, 4);
        m_rows->fixed(observation.multipath, 3);
        m_rows->fixed(observation.smoothing, 3);
        m_rows->number(epoch.clockBias);
        m_rows->end();
    }
}

} // namespace tqx
