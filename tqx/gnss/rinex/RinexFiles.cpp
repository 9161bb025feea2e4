#include "tqx/gnss/rinex/RinexFiles.h"

#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/rinex/NavigationFile.h"
#include "tqx/gnss/rinex/ObservationFile.h"
#include "tqx/gnss/rinex/PulseList.h"
#include "tqx/gnss/rinex/RinexName.h"
#include "tqx/log/write/ProductFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <utility>

namespace tqx
{

class RinexFiles::Content
{
public:
    explicit Content(RinexRequest asked)
        : request(std::move(asked)), surveying([this](ObservationEpoch& epoch) {
              return show(epoch, [this](const ObservationEpoch& shown) { survey.take(shown); });
          }),
          writing([this](ObservationEpoch& epoch) {
              return show(epoch, [this](const ObservationEpoch& shown) { write(shown); });
          })
    {
    }

    void takeMessage(const DecodedBlock& decoded);
    void openFiles();
    void writePulses(size_t end);

    NameParts nameParts() const
    {
        NameParts parts;
        parts.marker = request.options.marker;
        return parts;
    }
    std::string placeIn(const std::string& name);

    struct Output {
        Output(ObservationFile observations, const std::string& path, bool isCompressed)
            : rinex(std::move(observations)), file(path, isCompressed)
        {
        }

        ObservationFile rinex;
        ProductFile file;
    };

    RinexRequest request;
    LogSurvey survey;
    NavigationStore navigation;
    PulseList pulses;
    std::optional<GnssMillis> firstMessage; ///< times of blocks for the navigation file
    GnssMillis lastMessage = 0;
    ObservationGatherer surveying; ///< in the first pass
    ObservationGatherer writing;   ///< in the second pass
    std::vector<std::unique_ptr<Output>> outputs;

private:
    /// Leaves in an epoch what is wanted. Returns whether the epoch counts as shown, so that
    /// losses of lock need not be kept for the next one.
    template<typename Use>
    bool show(ObservationEpoch& epoch, const Use& use)
    {
        if (!request.selection.isInTime(epoch.time))
            return true;
        if (!request.selection.isOnInterval(epoch.time))
            return false;
        request.selection.reduce(epoch);
        use(epoch);
        return true;
    }

    void write(const ObservationEpoch& epoch);

    size_t m_writtenPulses = 0;
    std::vector<std::string> m_names; ///< of the files so far
};

/// A message before the first epoch may hold the ephemeris for that.
void RinexFiles::Content::takeMessage(const DecodedBlock& decoded)
{
    const auto time = decoded.block.getTime();
    if (time && request.selection.to && *time >= *request.selection.to)
        return;
    if (time && !firstMessage)
        firstMessage = time;
    if (time)
        lastMessage = *time;
    navigation.take(decoded);
}

/// Path of a new file; a second file of the same name gets a number.
std::string RinexFiles::Content::placeIn(const std::string& name)
{
    std::string unique = name;
    for (unsigned i = 2; std::find(m_names.begin(), m_names.end(), unique) != m_names.end(); ++i)
        unique = fmt::format("{}-{}", i, name);
    m_names.push_back(unique);
    const std::string ending = request.isCompressed ? ".gz" : "";
    return (std::filesystem::path(request.folder) / (unique + ending)).string();
}

void RinexFiles::Content::openFiles()
{
    for (const auto& [antenna, antennaSurvey] : survey.getAntennas()) {
        ObservationFile rinex(survey, antenna, request.options);
        if (!rinex.hasSignals())
            continue;
        NameParts parts = nameParts();
        parts.setUp = rinex.getSetUp();
        parts.antenna = antenna;
        parts.first = antennaSurvey.first;
        parts.last = antennaSurvey.last;
        parts.interval = antennaSurvey.getInterval();
        const std::string path = placeIn(observationFileName(parts));
        outputs.push_back(std::make_unique<Output>(std::move(rinex), path, request.isCompressed));
        Output& output = *outputs.back();
        output.rinex.writeHeader(output.file.getBuffer());
    }
}

/// Writes the pulses before that one that are not yet in the files.
void RinexFiles::Content::writePulses(size_t end)
{
    for (; m_writtenPulses < end; ++m_writtenPulses) {
        const PulseList::Pulse& pulse = pulses.get()[m_writtenPulses];
        for (const auto& output : outputs) {
            output->rinex.writeEvent(output->file.getBuffer(), pulse.time, pulse.nanoseconds,
                                     pulse.input, pulse.edge);
        }
    }
}

void RinexFiles::Content::write(const ObservationEpoch& epoch)
{
    writePulses(pulses.findFirstFrom(epoch.time, m_writtenPulses));
    for (const auto& output : outputs) {
        output->rinex.write(output->file.getBuffer(), epoch);
        output->file.commit();
    }
}

RinexFiles::RinexFiles(RinexRequest request)
    : m_content(std::make_unique<Content>(std::move(request)))
{
}

RinexFiles::~RinexFiles() = default;

bool RinexFiles::isSurveyed(uint16_t blockNumber)
{
    return ObservationGatherer::wants(blockNumber) || LogSurvey::wants(blockNumber) ||
           NavigationStore::wants(blockNumber) || PulseList::wants(blockNumber);
}

void RinexFiles::survey(const DecodedBlock& decoded)
{
    const uint16_t number = decoded.block.getNumber();
    // The content of a block applies to the epochs after it.
    if (const auto time = decoded.block.getTime(); time && number == SetUp::blockNumber)
        m_content->surveying.advance(*time);
    if (LogSurvey::wants(number))
        m_content->survey.take(decoded);
    if (NavigationStore::wants(number))
        m_content->takeMessage(decoded);
    if (PulseList::wants(number))
        m_content->pulses.take(decoded.record);
    if (ObservationGatherer::wants(number))
        m_content->surveying.take(decoded);
}

void RinexFiles::endSurvey()
{
    m_content->surveying.finish();
    m_content->survey.finish();
    m_content->pulses.finish(m_content->request.selection);
    m_content->openFiles();
}

const LogSurvey& RinexFiles::getSurvey() const
{
    return m_content->survey;
}

const ObservationLosses& RinexFiles::getLosses() const
{
    return m_content->surveying.getLosses();
}

const NavigationLosses& RinexFiles::getNavigationLosses() const
{
    return m_content->navigation.getLosses();
}

size_t RinexFiles::countWithoutRecord() const
{
    const RinexRequest& request = m_content->request;
    const auto& all = m_content->navigation.getEphemerides();
    return static_cast<size_t>(
        std::count_if(all.begin(), all.end(), [&request](const Ephemeris& ephemeris) {
            return request.selection.accepts(ephemeris.satellite) &&
                   !tqx::isWritten(ephemeris, request.options.version);
        }));
}

bool RinexFiles::hasObservations() const
{
    return !m_content->outputs.empty();
}

bool RinexFiles::isWritten(uint16_t blockNumber)
{
    return blockNumber == SetUp::blockNumber || ObservationGatherer::wants(blockNumber);
}

void RinexFiles::write(const DecodedBlock& decoded)
{
    if (decoded.block.getNumber() != SetUp::blockNumber)
        return m_content->writing.take(decoded);
    if (const auto time = decoded.block.getTime())
        m_content->writing.advance(*time);
    for (const auto& output : m_content->outputs)
        output->rinex.change(SetUp::of(decoded));
}

std::vector<std::string> RinexFiles::finishObservations()
{
    m_content->writing.finish();
    m_content->writePulses(m_content->pulses.get().size());
    std::vector<std::string> paths;
    for (const auto& output : m_content->outputs) {
        output->file.finish();
        paths.push_back(output->file.getPath());
    }
    m_content->outputs.clear();
    return paths;
}

std::string RinexFiles::writeNavigation()
{
    const RinexRequest& request = m_content->request;
    const LogSurvey& survey = m_content->survey;
    const auto& ephemerides = m_content->navigation.getEphemerides();
    const auto isWanted = [&](const Ephemeris& ephemeris) {
        return tqx::isWritten(ephemeris, request.options.version) &&
               request.selection.accepts(ephemeris.satellite);
    };
    if (std::none_of(ephemerides.begin(), ephemerides.end(), isWanted))
        return {};
    NameParts parts = m_content->nameParts();
    parts.setUp = survey.getSetUp().value_or(SetUp());
    parts.first = m_content->firstMessage.value_or(0);
    parts.last = m_content->lastMessage;
    if (!survey.getAntennas().empty()) {
        const AntennaSurvey& main = survey.getAntennas().begin()->second;
        parts.first = main.first;
        parts.last = main.last;
        parts.interval = main.getInterval();
    }
    ProductFile file(m_content->placeIn(navigationFileName(parts)), request.isCompressed);
    writeNavigationFile(file.getBuffer(), m_content->navigation, request.selection,
                        survey.getLeapSeconds(), request.options);
    file.finish();
    return file.getPath();
}

} // namespace tqx
