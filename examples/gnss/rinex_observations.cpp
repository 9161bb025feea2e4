// rinex_observations LOG
//
// Writes the observations of a log, those of the main antenna, as a RINEX 3.05 file to standard
// output. The header describes the whole file, so the log is read twice.

#include <tqx/gnss/observation/ObservationGatherer.h>
#include <tqx/gnss/rinex/ObservationFile.h>
#include <tqx/log/DataError.h>
#include <tqx/log/record/RecordDecoder.h>
#include <tqx/log/source/OpenSource.h>
#include <tqx/log/stream/BlockStream.h>

#include <cstdio>
#include <functional>

namespace
{

using Take = std::function<void(const tqx::DecodedBlock& decoded)>;

/// Gathers the epochs of a log; passes blocks that headers need to `takeOther`.
void read(const char* path, const tqx::ObservationGatherer::Receiver& takeEpoch,
          const Take& takeOther)
{
    tqx::ObservationGatherer gatherer(takeEpoch);
    const auto source = tqx::openSource(path);
    tqx::BlockStream stream(*source);
    tqx::RecordDecoder decoder;
    for (tqx::Block block = {}; stream.next(block);) {
        const bool isForHeader = takeOther && tqx::LogSurvey::wants(block.getNumber());
        const bool isMeasurement = tqx::ObservationGatherer::wants(block.getNumber());
        if ((!isForHeader && !isMeasurement) || decoder.decode(block) < 0)
            continue;
        if (isForHeader)
            takeOther(decoder.getDecoded());
        if (isMeasurement)
            gatherer.take(decoder.getDecoded());
    }
    gatherer.finish();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 1;
    try {
        tqx::LogSurvey survey;
        read(
            argv[1],
            [&](const tqx::ObservationEpoch& epoch) {
                survey.take(epoch);
                return true;
            },
            [&](const tqx::DecodedBlock& decoded) { survey.take(decoded); });
        survey.finish();
        if (survey.getAntennas().count(0) == 0)
            return 1;
        tqx::RinexOptions options;
        options.program = "rinex_observations";
        tqx::ObservationFile file(survey, 0, options);
        tqx::Buffer text;
        file.writeHeader(text);
        read(
            argv[1],
            [&](const tqx::ObservationEpoch& epoch) {
                file.write(text, epoch);
                std::fwrite(text.data(), 1, text.size(), stdout);
                text.clear();
                return true;
            },
            nullptr);
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
