#include "output/RinexRun.h"

#include "io/InputSequence.h"
#include "io/Interrupt.h"
#include "io/Words.h"

#include <fmt/format.h>

namespace tqx::tool
{

namespace
{

void sayWritten(const std::string& path, bool isQuiet)
{
    if (!isQuiet)
        words::say("wrote " + path);
}

} // namespace

RinexRun::RinexRun(const RinexRequest& request, bool mustKeep)
    : m_hasMarker(!request.options.marker.empty()), m_files(request)
{
    if (mustKeep)
        m_spool.emplace(request.folder);
}

void RinexRun::begin(InputStream& stream)
{
    if (m_spool)
        stream.setCopy([this](const uint8_t* bytes, size_t size) { m_spool->add(bytes, size); });
}

void RinexRun::take(BlockStream& stream, const Block& block)
{
    if (!RinexFiles::isSurveyed(block.getNumber()))
        return;
    if (const int32_t result = m_decoder.decode(block); result < 0)
        return stream.reportUndecodable(block, result);
    m_files.survey(m_decoder.getDecoded());
}

void RinexRun::end(InputStream&)
{
    m_files.endSurvey();
    for (const std::string& line : m_files.getLosses().describe())
        words::say(line);
    for (const std::string& line : m_files.getNavigationLosses().describe())
        words::say(line);
    if (const size_t count = m_files.countWithoutRecord(); count != 0) {
        words::say(fmt::format("{} {} of civil messages left out: only version 4.02 has records "
                               "for them (--rinex 4.02)",
                               count, count == 1 ? "ephemeris" : "ephemerides"));
    }
}

void RinexRun::writeObservations(ByteSource& source)
{
    BlockStream stream(source);
    for (Block block = {}; stream.next(block);) {
        if (RinexFiles::isWritten(block.getNumber()) && m_decoder.decode(block) >= 0)
            m_files.write(m_decoder.getDecoded());
    }
}

ExitStatus RinexRun::writeFiles(const std::vector<std::string>& files, bool isQuiet)
{
    if (m_files.getSurvey().getAntennas().empty()) {
        words::say("no observations: there is no observation file");
    } else if (!m_files.getSurvey().getSetUp() && !m_hasMarker) {
        words::say("the log does not describe the installation: marker, receiver and antenna are "
                   "unknown (set some of it with --marker, --observer and --agency)");
    }
    if (m_spool && m_files.hasObservations()) {
        writeObservations(*m_spool->read());
    } else if (m_files.hasObservations()) {
        InputSequence source(files, isQuiet);
        writeObservations(source);
        // Otherwise the files would not match their headers.
        if (interrupt::hasCome())
            return ExitStatus::Failed;
    }
    const std::vector<std::string> observations = m_files.finishObservations();
    for (const std::string& path : observations)
        sayWritten(path, isQuiet);
    const std::string navigation = m_files.writeNavigation();
    if (navigation.empty()) {
        words::say("no ephemerides: there is no navigation file");
    } else {
        sayWritten(navigation, isQuiet);
    }
    return observations.empty() && navigation.empty() ? ExitStatus::Failed : ExitStatus::Done;
}

} // namespace tqx::tool
