#include "output/RinexRun.h"

#include "io/InputSequence.h"
#include "io/Interrupt.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "tqx/gnss/rinex/RinexName.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace tqx::tool
{

RinexRun::RinexRun(RinexRequest request, bool mustKeep)
    : m_request(std::move(request)),
      m_gatherer([this](ObservationEpoch& epoch) { return survey(epoch); })
{
    if (mustKeep)
        m_spool.emplace(m_request.folder);
}

void RinexRun::begin(InputStream& stream)
{
    if (m_spool)
        stream.setCopy([this](const uint8_t* bytes, size_t size) { m_spool->add(bytes, size); });
}

void RinexRun::take(BlockStream& stream, const Block& block)
{
    const uint16_t number = block.getNumber();
    const bool isObservation = ObservationGatherer::wants(number);
    const bool isForHeader = LogSurvey::wants(number);
    const bool isMessage = NavigationStore::wants(number);
    const bool isPulse = PulseList::wants(number);
    if (!isObservation && !isForHeader && !isMessage && !isPulse)
        return;
    if (const int32_t result = m_decoder.decode(block); result < 0)
        return stream.reportUndecodable(block, result);
    // What a block says holds for the epochs after it.
    if (const auto time = block.getTime(); time && number == SetUp::blockNumber)
        m_gatherer.advance(*time);
    if (isForHeader)
        m_survey.take(m_decoder.getDecoded());
    if (isMessage)
        takeMessage(m_decoder.getDecoded());
    if (isPulse)
        m_pulses.take(m_decoder.getRecord());
    if (isObservation)
        m_gatherer.take(m_decoder.getDecoded());
}

/// A message before the first epoch may hold the ephemeris for that.
void RinexRun::takeMessage(const DecodedBlock& decoded)
{
    const auto time = decoded.block.getTime();
    if (time && m_request.selection.to && *time >= *m_request.selection.to)
        return;
    if (time && !m_firstMessage)
        m_firstMessage = time;
    if (time)
        m_lastMessage = *time;
    m_navigation.take(decoded);
}

void RinexRun::end(InputStream&)
{
    m_gatherer.finish();
    m_survey.finish();
    m_pulses.finish(m_request.selection);
    for (const std::string& line : m_gatherer.getLosses().describe())
        words::say(line);
    for (const std::string& line : m_navigation.getLosses().describe())
        words::say(line);
}

bool RinexRun::survey(ObservationEpoch& epoch)
{
    const EpochSelection& selection = m_request.selection;
    if (!selection.isInTime(epoch.time))
        return true;
    if (!selection.isOnInterval(epoch.time))
        return false;
    selection.reduce(epoch);
    m_survey.take(epoch);
    return true;
}

/// Path of a new file; a second file of the same name gets a number.
std::string RinexRun::placeIn(const std::string& name)
{
    std::string unique = name;
    for (unsigned i = 2; std::find(m_names.begin(), m_names.end(), unique) != m_names.end(); ++i)
        unique = fmt::format("{}-{}", i, name);
    m_names.push_back(unique);
    const std::string ending = m_request.isCompressed ? ".gz" : "";
    return (std::filesystem::path(m_request.folder) / (unique + ending)).string();
}

void RinexRun::openFiles()
{
    for (const auto& [antenna, survey] : m_survey.getAntennas()) {
        ObservationFile rinex(m_survey, antenna, m_request.options);
        if (!rinex.hasSignals())
            continue;
        NameParts parts;
        parts.marker = m_request.options.marker;
        parts.setUp = rinex.getSetUp();
        parts.antenna = antenna;
        parts.first = survey.first;
        parts.last = survey.last;
        parts.interval = survey.getInterval();
        const std::string path = placeIn(observationFileName(parts));
        m_outputs.push_back(
            std::make_unique<Output>(std::move(rinex), path, m_request.isCompressed));
        Output& output = *m_outputs.back();
        output.rinex.writeHeader(output.file.getBuffer());
    }
}

/// Writes the pulses before that one which are not yet in the files.
void RinexRun::writePulses(size_t end)
{
    for (; m_writtenPulses < end; ++m_writtenPulses) {
        const PulseList::Pulse& pulse = m_pulses.get()[m_writtenPulses];
        for (const auto& output : m_outputs) {
            output->rinex.writeEvent(output->file.getBuffer(), pulse.time, pulse.nanoseconds,
                                     pulse.input, pulse.edge);
        }
    }
}

void RinexRun::writeObservations(ByteSource& source)
{
    ObservationGatherer gatherer([this](ObservationEpoch& epoch) {
        if (!m_request.selection.isInTime(epoch.time))
            return true;
        if (!m_request.selection.isOnInterval(epoch.time))
            return false;
        m_request.selection.reduce(epoch);
        writePulses(m_pulses.findFirstFrom(epoch.time, m_writtenPulses));
        for (const auto& output : m_outputs) {
            output->rinex.write(output->file.getBuffer(), epoch);
            output->file.commit();
        }
        return true;
    });
    BlockStream stream(source);
    for (Block block = {}; stream.next(block);) {
        const uint16_t number = block.getNumber();
        const bool isSetUp = number == SetUp::blockNumber;
        if ((!isSetUp && !ObservationGatherer::wants(number)) || m_decoder.decode(block) < 0)
            continue;
        if (!isSetUp) {
            gatherer.take(m_decoder.getDecoded());
            continue;
        }
        if (const auto time = block.getTime())
            gatherer.advance(*time);
        for (const auto& output : m_outputs)
            output->rinex.change(SetUp::of(m_decoder.getDecoded()));
    }
    gatherer.finish();
    writePulses(m_pulses.get().size());
}

void RinexRun::finish(ProductFile& file)
{
    file.finish();
    if (!m_isQuiet)
        words::say("wrote " + file.getPath());
}

void RinexRun::writeNavigation()
{
    const auto& ephemerides = m_navigation.getEphemerides();
    const auto isWanted = [this](const Ephemeris& ephemeris) {
        return isWritten(ephemeris, m_request.options.version) &&
               m_request.selection.accepts(ephemeris.satellite);
    };
    if (std::none_of(ephemerides.begin(), ephemerides.end(), isWanted)) {
        words::say("no ephemerides: there is no navigation file");
        return;
    }
    NameParts parts;
    parts.marker = m_request.options.marker;
    parts.setUp = m_survey.getSetUp().value_or(SetUp());
    parts.first = m_firstMessage.value_or(0);
    parts.last = m_lastMessage;
    if (!m_survey.getAntennas().empty()) {
        const AntennaSurvey& main = m_survey.getAntennas().begin()->second;
        parts.first = main.first;
        parts.last = main.last;
        parts.interval = main.getInterval();
    }
    ProductFile file(placeIn(navigationFileName(parts)), m_request.isCompressed);
    writeNavigationFile(file.getBuffer(), m_navigation, m_request.selection,
                        m_survey.getLeapSeconds(), m_request.options);
    finish(file);
}

ExitStatus RinexRun::writeFiles(const std::vector<std::string>& files, bool isQuiet)
{
    m_isQuiet = isQuiet;
    const bool hasObservations = !m_survey.getAntennas().empty();
    if (!hasObservations) {
        words::say("no observations: there is no observation file");
    } else if (!m_survey.getSetUp() && m_request.options.marker.empty()) {
        words::say("the log does not describe the installation: marker, receiver and antenna are "
                   "not known (--marker, --observer and --agency give some of it)");
    }
    openFiles();
    if (m_spool && !m_outputs.empty()) {
        writeObservations(*m_spool->read());
    } else if (!m_outputs.empty()) {
        InputSequence source(files, isQuiet);
        writeObservations(source);
        // What is cut off would not be what the headers say.
        if (interrupt::hasCome())
            return ExitStatus::Failed;
    }
    for (const auto& output : m_outputs)
        finish(output->file);
    writeNavigation();
    return m_names.empty() ? ExitStatus::Failed : ExitStatus::Done;
}

} // namespace tqx::tool
