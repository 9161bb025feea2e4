#include "commands/SimulateCommand.h"

#include "io/Interrupt.h"
#include "io/Output.h"
#include "io/Progress.h"
#include "io/Target.h"
#include "io/ToolError.h"
#include "options/Numbers.h"
#include "options/SimulatedInputs.h"
#include "tqx/log/text/PrintableText.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tqx::tool
{

namespace
{

constexpr double longest = 1e8; // seconds

/// Each at the place of its number.
const std::vector<std::string> systemNames = {"gps",  "glonass", "galileo", "beidou",
                                              "qzss", "navic",   "sbas"};

} // namespace

SimulateCommand::SimulateCommand(CLI::App& program)
    : Command(
          program, "simulate", "Make the log of a simulated receiver",
          "  tqx simulate --duration 3600 -o hour.tqx\n"
          "  tqx simulate --track circle --speed 20 --rate 10 --position 48.2,16.37,180 -o "
          "drive.tqx\n"
          "  tqx simulate --start 2404:604790 --duration 30 | tqx info -\n"
          "  tqx simulate --size 1GB --rate 20 -o big.tqx\n"
          "  tqx simulate --rate 10 --duration 60 --seed 7 --damage | tqx info -\n"
          "  tqx simulate --mixed -o mixed.tqx\n"
          "  tqx simulate --compact --systems gps,qzss --slips 20 --clock-drift 5 -o rough.tqx\n"
          "\n"
          "The receiver tracks the nominal constellations of GPS, GLONASS, Galileo and BeiDou,\n"
          "and on request QZSS, NavIC and SBAS, on up to three signals each. Its measurements\n"
          "agree with the navigation messages: geometry, clocks, group delays, ionosphere (the\n"
          "broadcast Klobuchar model), troposphere (Saastamoinen in a standard atmosphere) and\n"
          "noise. The same seed gives the same bytes from one build.\n")
{
    declareLength();
    declareTrack();
    declareReceiver();
    addInputOptions(m_app, m_settings);
    addWhole(m_app, "--seed", m_settings.seed, 0, std::numeric_limits<uint64_t>::max(),
             "Seed of the random numbers")
        ->type_name("NUMBER");
    m_app.add_flag("--damage", m_settings.damage,
                   "Flip bits, truncate blocks and insert junk between them");
    m_app.add_flag("--compact", m_settings.compact,
                   "Also send the measurements in compact blocks: residues between full epochs");
    m_faults.add(m_app);
    m_app.add_flag("--mixed", m_settings.mixed,
                   "Insert NMEA sentences, RTCM 3 frames and replies between the blocks");
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

void SimulateCommand::declareLength()
{
    m_app.add_option("--start", m_start, "GNSS time of the first epoch, week 1930 to 4000")
        ->type_name("WEEK:SECONDS")
        ->capture_default_str();
    m_duration = addReal(m_app, "--duration", m_settings.duration, 0, longest, "seconds",
                         "Length of the log in seconds")
                     ->type_name("SECONDS");
    addBytes(m_app, "--size", m_settings.size,
             "End the log at this size, such as 500MB or 1GB; without --duration, only the size "
             "limits the log")
        ->type_name("BYTES")
        ->default_str("");
    addReal(m_app, "--rate", m_rate, 1e-4, 1000, "hertz",
            "Epochs per second; the period must be in whole milliseconds")
        ->type_name("HERTZ");
}

void SimulateCommand::declareReceiver()
{
    m_app
        .add_option("--systems", m_systems,
                    "Satellite systems that the receiver tracks, from gps, glonass, galileo, "
                    "beidou, qzss, navic and sbas; the first four by default")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->transform(CLI::IsMember(systemNames, CLI::ignore_case).description(""))
        ->type_name("SYSTEM,SYSTEM")
        ->default_str("");
    m_app.add_flag(
        "--two-antennas", m_settings.receiver.hasSecondAntenna,
        "Also measure at a second antenna, 1.5 m ahead of the first on a vehicle that heads "
        "east at first, and find the attitude");
    m_app.add_flag(
        "--almanacs", m_settings.almanacs,
        "Send almanacs of all satellites but those of NavIC, which have no block, and of SBAS "
        "services that are not received");
    m_clockDrift =
        addReal(m_app, "--clock-drift", m_partsPerMillion, -100, 100, "ppm",
                "Drift of the clock; 10 means a jump of one millisecond every 100 seconds")
            ->type_name("PPM")
            ->default_str("");
    addReal(m_app, "--slips", m_settings.receiver.slipsPerHour, 0, 3600, "an hour",
            "How often lock on a satellite is lost, on average")
        ->type_name("PER_HOUR");
}

void SimulateCommand::readReceiver()
{
    simulation::ReceiverSettings& receiver = m_settings.receiver;
    receiver.systems = 0;
    for (const std::string& name : m_systems) {
        receiver.systems |=
            1U << (std::find(systemNames.begin(), systemNames.end(), name) - systemNames.begin());
    }
    if (m_clockDrift->count() != 0)
        receiver.clockDrift = m_partsPerMillion * 1e-6;
}

void SimulateCommand::declareTrack()
{
    m_app
        .add_option(
            "--track", m_track,
            "How the antenna moves: not at all, on a circle of 200 m radius or eastwards on a line")
        ->transform(CLI::IsMember({"static", "circle", "line"}, CLI::ignore_case).description(""))
        ->type_name("static|circle|line")
        ->capture_default_str();
    addReal(m_app, "--speed", m_settings.track.speed, 0, 300, "metres a second",
            "Speed on the track in metres per second")
        ->type_name("SPEED");
    m_app.add_option("--position", m_position, "Start of the track: degrees and metres")
        ->option_text("LAT,LON,HEIGHT=47.07,15.45,412.3");
}

/// Sets the time of the first epoch. Before week 1930 the number of leap seconds was different.
void SimulateCommand::readStart()
{
    constexpr double lastMillisecond = 604799.999;
    const size_t colon = m_start.find(':');
    try {
        const uint64_t week =
            numbers::whole(std::string_view(m_start).substr(0, colon), 1930, 4000);
        const double seconds = numbers::real(
            colon == std::string::npos ? "" : m_start.substr(colon + 1), 0, lastMillisecond);
        const double millis = seconds * 1000;
        if (std::fabs(millis - std::round(millis)) > 1e-3)
            throw DataError("is finer than milliseconds");
        m_settings.week = static_cast<uint16_t>(week);
        m_settings.towMillis = static_cast<uint32_t>(std::llround(millis));
    } catch (const DataError&) {
        throw ToolError(
            fmt::format("simulate: {} is not a start, such as 2400:216000", shortened(m_start)));
    }
}

void SimulateCommand::readPosition()
{
    if (m_position.empty())
        return;
    constexpr double degree = pi / 180;
    const std::vector<std::string> parts = CLI::detail::split(m_position, ',');
    try {
        if (parts.size() != 3)
            throw DataError("it needs three numbers");
        m_settings.track.start = {numbers::real(parts[0], -89, 89) * degree,
                                  numbers::real(parts[1], -180, 180) * degree,
                                  numbers::real(parts[2], -500, 20000)};
    } catch (const DataError& error) {
        throw ToolError(fmt::format("simulate: --position needs a latitude up to 89, a longitude "
                                    "up to 180 and a height of -500 to 20000: {}",
                                    error.what()));
    }
}

ExitStatus SimulateCommand::run()
{
    const double period = 1000 / m_rate;
    if (std::fabs(period - std::round(period)) > 1e-6 * period) {
        throw ToolError(fmt::format("simulate: {} Hz is a period of {} ms, which is not whole",
                                    m_rate, period));
    }
    m_settings.periodMillis = static_cast<uint32_t>(std::llround(period));
    using Kind = simulation::TrackSettings::Kind;
    m_settings.track.kind = m_track == "circle" ? Kind::Circle
                            : m_track == "line" ? Kind::Line
                                                : Kind::Static;
    readStart();
    readPosition();
    readReceiver();
    if (m_settings.size != 0 && m_duration->count() == 0)
        m_settings.duration = longest;
    m_settings.faults = m_faults.get();
    refuseTerminal(m_target);
    Output output(m_target);
    Progress progress("simulated", m_settings.size);
    const std::vector<simulation::Fault> faults =
        simulation::simulate(m_settings, output.getBuffer(), [&](uint64_t size) {
            progress.add(size);
            output.commit();
            return !interrupt::hasCome();
        });
    output.flush();
    m_faults.writeTruth(faults, m_settings.week * millisPerWeek + m_settings.towMillis);
    return ExitStatus::Done;
}

} // namespace tqx::tool
