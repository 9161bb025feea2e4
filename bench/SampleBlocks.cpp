#include "SampleBlocks.h"

#include "RecordGuard.h"
#include "korcg_crc.h"
#include "korcg_load.h"
#include "yardstick.pb.h"

#include <random>
#include <stdexcept>

namespace
{

using namespace Kor::MessageApi;

constexpr uint8_t signals = 40;
constexpr uint8_t furtherSignals = 2;
constexpr uint8_t bytesPerSignal = 20;
constexpr uint8_t furtherBytes = 12;
constexpr size_t epochHead = 20;

std::vector<uint8_t> randomBytes(size_t size)
{
    std::mt19937_64 random(size);
    std::vector<uint8_t> bytes(size);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random());
    return bytes;
}

void frame(std::vector<uint8_t>& block, uint16_t id)
{
    block[0] = '$';
    block[1] = '@';
    korcg_store_u16(&block[4], id);
    korcg_store_u16(&block[6], static_cast<uint16_t>(block.size()));
    korcg_store_u16(&block[2], korcg_crc16_bytes(&block[4], block.size() - 4));
}

void decodeWhole(const std::vector<uint8_t>& block, AnyRecord& record)
{
    if (record.decode(block) <= 0)
        throw std::runtime_error("a block of the benchmark does not decode");
}

void copyFurther(const TQX_MeasEpochChannelType2_s& from, yardstick::MeasEpoch2_Type2& to)
{
    to.set_signal_index(from.SignalIndex);
    to.set_antenna_id(from.AntennaID);
    to.set_lock_time(from.LockTime);
    to.set_cn0(from.CN0);
    to.set_code_offset_msb(from.CodeOffsetMSB);
    to.set_doppler_offset_msb(from.DopplerOffsetMSB);
    to.set_carrier_msb(from.CarrierMSB);
    to.set_smoothed(from.Smoothed != 0);
    to.set_half_cycle_ambiguity(from.HalfCycleAmbiguity != 0);
    to.set_freq_slot(from.FreqSlot);
    to.set_code_offset_lsb(from.CodeOffsetLSB);
    to.set_carrier_lsb(from.CarrierLSB);
    to.set_doppler_offset_lsb(from.DopplerOffsetLSB);
}

void copySignal(const TQX_MeasEpochChannelType1_s& from, yardstick::MeasEpoch2_Type1& to)
{
    to.set_rx_channel(from.RxChannel);
    to.set_signal_index(from.SignalIndex);
    to.set_antenna_id(from.AntennaID);
    to.set_svid(from.SVID);
    to.set_code_msb(from.CodeMSB);
    to.set_code_lsb(from.CodeLSB);
    to.set_doppler(from.Doppler);
    to.set_carrier_lsb(from.CarrierLSB);
    to.set_carrier_msb(from.CarrierMSB);
    to.set_cn0(from.CN0);
    to.set_lock_time(from.LockTime);
    to.set_smoothed(from.Smoothed != 0);
    to.set_half_cycle_ambiguity(from.HalfCycleAmbiguity != 0);
    to.set_freq_slot(from.FreqSlot);
    for (int i = 0; i < from.N2; ++i)
        copyFurther(from.Type2[i], *to.add_type2());
}

} // namespace

std::vector<uint8_t> positionBlock()
{
    std::vector<uint8_t> block = randomBytes(96);
    frame(block, 4007 | 2U << 13U);
    return block;
}

std::vector<uint8_t> epochBlock()
{
    constexpr size_t signalBytes = bytesPerSignal + size_t{furtherSignals} * furtherBytes;
    std::vector<uint8_t> block = randomBytes(epochHead + signals * signalBytes);
    block[14] = signals;
    block[15] = bytesPerSignal;
    block[16] = furtherBytes;
    for (size_t i = 0; i < signals; ++i)
        block[epochHead + i * signalBytes + bytesPerSignal - 1] = furtherSignals;
    frame(block, 4027);
    return block;
}

std::string positionAsProtobuf()
{
    AnyRecord area;
    decodeWhole(positionBlock(), area);
    const auto& from = area.as<TQX_PVTGeodetic2_s>();
    yardstick::PVTGeodetic2 to;
    to.set_block_number(from.BlockNumber);
    to.set_revision(from.Revision);
    to.set_tow(from.TOW);
    to.set_wnc(from.WNc);
    to.set_pvt_mode(from.PVTMode);
    to.set_averaging(from.Averaging != 0);
    to.set_fixed_height(from.FixedHeight != 0);
    to.set_error(from.Error);
    to.set_latitude(from.Latitude);
    to.set_longitude(from.Longitude);
    to.set_height(from.Height);
    to.set_undulation(from.Undulation);
    to.set_vn(from.Vn);
    to.set_ve(from.Ve);
    to.set_vu(from.Vu);
    to.set_cog(from.COG);
    to.set_rx_clk_bias(from.RxClkBias);
    to.set_rx_clk_drift(from.RxClkDrift);
    to.set_time_system(from.TimeSystem);
    to.set_datum(from.Datum);
    to.set_nr_sv(from.NrSV);
    to.set_fast_corr(from.FastCorr != 0);
    to.set_long_term_corr(from.LongTermCorr != 0);
    to.set_iono_corr(from.IonoCorr != 0);
    to.set_integrity(from.Integrity != 0);
    to.set_precision_approach(from.PrecisionApproach != 0);
    to.set_corr_source(from.CorrSource);
    to.set_reference_id(from.ReferenceID);
    to.set_mean_corr_age(from.MeanCorrAge);
    to.set_signal_info(from.SignalInfo);
    to.set_raim_state(from.RAIMState);
    to.set_integrity_alert(from.IntegrityAlert != 0);
    to.set_iono_alert(from.IonoAlert != 0);
    to.set_interference_alert(from.InterferenceAlert != 0);
    to.set_nr_bases(from.NrBases);
    to.set_ppp_time(from.PPPTime);
    to.set_ppp_start(from.PPPStart);
    to.set_latency(from.Latency);
    to.set_h_accuracy(from.HAccuracy);
    to.set_v_accuracy(from.VAccuracy);
    to.set_baseline(from.Baseline != 0);
    to.set_arp_marker_offset(from.ARPMarkerOffset != 0);
    to.set_rover_phase_center(from.RoverPhaseCenter != 0);
    to.set_base_phase_center(from.BasePhaseCenter != 0);
    to.set_undulation_source(from.UndulationSource);
    to.set_position_point(from.PositionPoint);
    return to.SerializeAsString();
}

std::string epochAsProtobuf()
{
    AnyRecord area;
    decodeWhole(epochBlock(), area);
    const auto& from = area.as<TQX_MeasEpoch2_s>();
    yardstick::MeasEpoch2 to;
    to.set_block_number(from.BlockNumber);
    to.set_revision(from.Revision);
    to.set_tow(from.TOW);
    to.set_wnc(from.WNc);
    to.set_multipath_mitigation(from.Multipath_Mitigation != 0);
    to.set_code_smoothing(from.Code_Smoothing != 0);
    to.set_clock_steering(from.Clock_Steering != 0);
    to.set_data_only(from.Data_only != 0);
    to.set_high_dynamics(from.High_Dynamics != 0);
    to.set_e6b_used(from.E6B_Used != 0);
    to.set_cum_clk_jumps(from.CumClkJumps);
    for (int i = 0; i < from.N1; ++i)
        copySignal(from.Type1[i], *to.add_type1());
    return to.SerializeAsString();
}
