#include "tqx/simulation/Blocks.h"

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr float notAvailable = -2e10F;
constexpr uint8_t headingAndPitchFixed = 2;
constexpr uint8_t tooFewSatellites = 1;

float value(double number, double step)
{
    return static_cast<float>(rounded(number, step));
}

/// A bit for each signal number that the vector is computed from.
uint32_t firstSignals(const Receiver& receiver)
{
    uint32_t signals = 0;
    for (const Sight& sight : receiver.getSights()) {
        const uint8_t number = sight.signals[0].plan->number;
        signals |= sight.hasSecond && number < 32 ? 1U << number : 0;
    }
    return signals;
}

void addVector(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr uint32_t standalone = 1;
    constexpr uint8_t fixed = 1;
    constexpr uint8_t firstAuxiliary = 1;
    constexpr double step = 1e-4; // metres, and metres per second
    const Baseline& baseline = receiver.getBaseline();
    TQX_AuxAntPositions1_s record;
    TQX_init_AuxAntPositions1(&record);
    record.Revision = 1;
    record.MainInfo = standalone | receiver.getSolution().usedSatellites() << 8U |
                      uint32_t{baseline.reference} << 16U;
    TQX_AuxAntPositionSub_s& antenna = *TQX_append_AuxAntPositions1_AuxAntPosition(&record);
    antenna.NrSV = static_cast<uint8_t>(baseline.satellites);
    antenna.AuxAntID = firstAuxiliary;
    antenna.SignalInfo = firstSignals(receiver);
    if (baseline.isKnown) {
        const auto& [position, velocity] = baseline.vector;
        antenna.Error = 0;
        antenna.AmbiguityType = fixed;
        antenna.DeltaEast = rounded(position.x, step);
        antenna.DeltaNorth = rounded(position.y, step);
        antenna.DeltaUp = rounded(position.z, step);
        antenna.Ve = value(velocity.x, step);
        antenna.Vn = value(velocity.y, step);
        antenna.Vu = value(velocity.z, step);
    } else {
        antenna.Error = tooFewSatellites;
        antenna.AmbiguityType = 0;
    }
    log.add(epoch, record, TQX_encode_AuxAntPositions1);
}

void addAngles(BlockLog& log, const Epoch& epoch, const Baseline& baseline)
{
    constexpr double step = 1e-5;
    TQX_AttEuler1_s record;
    TQX_init_AttEuler1(&record);
    record.Revision = 1;
    record.NrSV = static_cast<uint8_t>(baseline.satellites);
    record.Error = baseline.isKnown ? 0 : tooFewSatellites;
    record.Mode = baseline.isKnown ? headingAndPitchFixed : 0;
    record.Heading = baseline.isKnown ? value(baseline.heading, step) : notAvailable;
    record.Pitch = baseline.isKnown ? value(baseline.pitch, step) : notAvailable;
    record.Roll = notAvailable;
    record.HeadingDot = baseline.isKnown ? value(baseline.headingRate, step) : notAvailable;
    record.PitchDot = baseline.isKnown ? value(baseline.pitchRate, step) : notAvailable;
    record.RollDot = notAvailable;
    log.add(epoch, record, TQX_encode_AttEuler1);
}

void addAngleCovariances(BlockLog& log, const Epoch& epoch, const Baseline& baseline)
{
    constexpr double step = 1e-7;
    TQX_AttCovEuler1_s record;
    TQX_init_AttCovEuler1(&record);
    record.Mode = baseline.isKnown ? headingAndPitchFixed : 0;
    record.Error = baseline.isKnown ? 0 : tooFewSatellites;
    record.Cov_HeadHead = value(baseline.headingVariance, step);
    record.Cov_PitchPitch = value(baseline.pitchVariance, step);
    record.Cov_HeadPitch = value(baseline.headingPitchCovariance, step);
    record.Cov_RollRoll = notAvailable;
    record.Cov_HeadRoll = notAvailable;
    record.Cov_PitchRoll = notAvailable;
    log.add(epoch, record, TQX_encode_AttCovEuler1);
}

} // namespace

void addAttitude(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    addVector(log, epoch, receiver);
    addAngles(log, epoch, receiver.getBaseline());
    addAngleCovariances(log, epoch, receiver.getBaseline());
    TQX_EndOfAtt1_s end;
    TQX_init_EndOfAtt1(&end);
    log.add(epoch, end, TQX_encode_EndOfAtt1);
}

} // namespace tqx::simulation
