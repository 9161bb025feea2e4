#pragma once

#include "tqx/gnss/compact/CompactSignal.h"
#include "tqx/simulation/BlockLog.h"

#include "TQX_codec.h"

#include <array>
#include <map>

namespace tqx::simulation
{

/// The measurements in compact blocks: the first two signals of each satellite, in full every ten
/// seconds and after clock jumps, otherwise as residues that earlier values complete.
class CompactBlocks
{
public:
    /// Adds the blocks of an epoch; epochs come in order.
    void add(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

private:
    using Entry = Kor::MessageApi::TQX_M3SatData_s;

    /// What a reader of the blocks knows about a satellite.
    struct Known {
        std::array<CompactSignal, 2> signals;
        std::array<double, 2> lockSince = {-1e9, -1e9}; ///< elapsed seconds
        std::array<bool, 2> isReferred = {}; ///< the lock of the reference epoch still holds
    };

    /// A signal in the steps of the blocks.
    struct Measured {
        int64_t code;  ///< millimetres
        int64_t phase; ///< millimetres
        double rate;   ///< metres per second
        double lockTime;
        bool isHalfCycle;
        int32_t doppler; ///< millihertz
        unsigned cn0;    ///< steps of 1/32 dB

        int64_t carrier() const { return phase - code; }
    };

    static Measured measured(const Sight& sight, const Signal& signal);
    void begin(const Epoch& epoch, const Receiver& receiver);
    void noteLock(Known& known, unsigned place, const Measured& value) const;
    CompactSignal::Moment momentOf(const Measured& value) const;
    void fillMaster(Entry& entry, Known& known, const Measured& value);
    void fillSlave(Entry& entry, Known& known, const Measured& master, Measured value);
    bool fillMasterResidue(Entry& entry, const Known& known, const Measured& value) const;
    void fillMasterInFull(Entry& entry, const Measured& value) const;
    bool fillSlaveResidue(Entry& entry, const Known& known, const Measured& master,
                          Measured& value) const;
    void fillSlaveInFull(Entry& entry, const Measured& master, const Measured& value) const;
    void keep(Known& known, unsigned place, const Measured& value) const;

    std::map<uint8_t, Known> m_known; ///< by satellite
    double m_elapsed = 0;
    double m_reference = -1e9; ///< elapsed seconds at the reference epoch
    Epoch m_referenceEpoch = {};
    bool m_isReference = false;
    uint8_t m_clockJumps = 0;
};

} // namespace tqx::simulation
