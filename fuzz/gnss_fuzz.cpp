// Passes blocks with arbitrary content through everything that makes observations, ephemerides,
// positions and events, and into every kind of file. Epochs must ascend, RINEX epochs must have as
// many lines as they say, and rows as many cells as there are columns.

#include "korcg_load.h"
#include "tqx/gnss/event/EventGatherer.h"
#include "tqx/gnss/event/EventWriter.h"
#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/navigation/NavigationTable.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/observation/ObservationTable.h"
#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/rinex/NavigationFile.h"
#include "tqx/gnss/rinex/ObservationFile.h"
#include "tqx/gnss/table/TextTable.h"
#include "tqx/gnss/track/TrackWriter.h"
#include "tqx/log/record/RecordDecoder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace
{

using Bytes = std::vector<uint8_t>;

void check(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

/// The numbers of all blocks that are used for anything.
const std::vector<uint16_t>& blockNumbers()
{
    static const std::vector<uint16_t> numbers = [] {
        std::vector<uint16_t> found;
        for (unsigned number = 0; number < 8192; ++number) {
            const auto wanted = static_cast<uint16_t>(number);
            if (tqx::ObservationGatherer::wants(wanted) || tqx::NavigationStore::wants(wanted) ||
                tqx::EventGatherer::wants(wanted) || tqx::LogSurvey::wants(wanted))
                found.push_back(wanted);
        }
        return found;
    }();
    return numbers;
}

/// The bytes as blocks: before each are a byte for its number, one for its revision and two for its
/// length.
std::vector<Bytes> blocksOf(const uint8_t* data, size_t size)
{
    constexpr size_t prefix = 4;
    constexpr size_t header = 8;
    constexpr size_t longest = 4000;
    std::vector<Bytes> blocks;
    while (size > prefix) {
        const unsigned number = blockNumbers()[data[0] % blockNumbers().size()];
        const unsigned id = number | (data[1] & 7U) << 13U;
        const size_t content = std::min(size - prefix, korcg_load_u16(data + 2) % longest);
        const size_t length = header + content;
        Bytes block = {'$',
                       '@',
                       0,
                       0,
                       static_cast<uint8_t>(id & 0xffU),
                       static_cast<uint8_t>(id >> 8U),
                       static_cast<uint8_t>(length & 0xffU),
                       static_cast<uint8_t>(length >> 8U)};
        block.insert(block.end(), data + prefix, data + prefix + content);
        blocks.push_back(std::move(block));
        data += prefix + content;
        size -= prefix + content;
    }
    return blocks;
}

template<typename Use>
void forEach(const std::vector<Bytes>& blocks, Use use)
{
    tqx::RecordDecoder decoder;
    for (const Bytes& block : blocks) {
        if (decoder.decode({block.data(), static_cast<uint16_t>(block.size()), 0}) > 0)
            use(decoder.getDecoded());
    }
}

/// Epoch lines, and as many lines after each as it says.
void checkEpochs(std::string_view text)
{
    constexpr std::string_view end = "END OF HEADER       \n";
    const size_t header = text.find(end);
    check(header != std::string_view::npos, "a header without an end");
    size_t at = header + end.size();
    while (at < text.size()) {
        check(text[at] == '>', "no epoch line");
        unsigned count = 0;
        for (const char digit : text.substr(at + 32, 3))
            count = count * 10 + (digit == ' ' ? 0U : static_cast<unsigned>(digit - '0'));
        for (unsigned line = 0; line <= count; ++line) {
            at = text.find('\n', at);
            check(at != std::string_view::npos, "a line too few");
            ++at;
        }
    }
}

/// Commas of each line of CSV without quotes.
void checkTable(std::string_view text)
{
    const auto commas = [&](std::string_view line) {
        return std::count(line.begin(), line.end(), ',');
    };
    const auto columns = commas(text.substr(0, text.find('\n')));
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at);
        check(end != std::string_view::npos, "a row without an end");
        check(commas(text.substr(at, end - at)) == columns, "a row of another length");
        at = end + 1;
    }
}

void makeObservations(const std::vector<Bytes>& blocks, const tqx::RinexOptions& options,
                      tqx::LogSurvey& survey)
{
    const auto pass = [&](const tqx::ObservationGatherer::Receiver& receiver, bool isSurvey) {
        tqx::ObservationGatherer gatherer(receiver);
        forEach(blocks, [&](const tqx::DecodedBlock& decoded) {
            const uint16_t number = decoded.block.getNumber();
            if (isSurvey && tqx::LogSurvey::wants(number))
                survey.take(decoded);
            if (tqx::ObservationGatherer::wants(number))
                gatherer.take(decoded);
        });
        gatherer.finish();
        gatherer.getLosses().describe();
    };
    tqx::Buffer table;
    tqx::TextTable target(tqx::RowFormat::Csv, table);
    tqx::ObservationTable rows(target);
    tqx::GnssMillis last = 0;
    pass(
        [&](const tqx::ObservationEpoch& epoch) {
            check(epoch.time > last || last == 0, "epochs do not ascend");
            last = epoch.time;
            rows.write(epoch);
            survey.take(epoch);
            return true;
        },
        true);
    survey.finish();
    checkTable(table.view());
    for (const auto& antenna : survey.getAntennas()) {
        tqx::ObservationFile file(survey, antenna.first, options);
        tqx::Buffer text;
        file.writeHeader(text);
        pass(
            [&](const tqx::ObservationEpoch& epoch) {
                file.write(text, epoch);
                return true;
            },
            false);
        checkEpochs(text.view());
    }
}

void makeNavigation(const std::vector<Bytes>& blocks, const tqx::RinexOptions& options,
                    const tqx::LogSurvey& survey)
{
    tqx::NavigationStore store;
    forEach(blocks, [&](const tqx::DecodedBlock& decoded) {
        if (tqx::NavigationStore::wants(decoded.block.getNumber()))
            store.take(decoded);
    });
    tqx::Buffer table;
    tqx::TextTable target(tqx::RowFormat::Csv, table);
    writeEphemerides(target, store.getEphemerides());
    checkTable(table.view());
    tqx::Buffer text;
    writeNavigationFile(text, store, tqx::EpochSelection(), survey.getLeapSeconds(), options);
}

void makeTracks(const std::vector<Bytes>& blocks)
{
    tqx::Buffer events;
    tqx::EventWriter writer(tqx::EventFormat::GeoJson, events);
    tqx::EventGatherer gatherer([&](const tqx::Event& event) { writer.add(event); });
    std::vector<tqx::Buffer> texts(5);
    std::vector<std::unique_ptr<tqx::TrackWriter>> tracks;
    for (size_t i = 0; i < texts.size(); ++i) {
        tracks.push_back(makeTrackWriter(static_cast<tqx::TrackFormat>(i), texts[i], "fuzz"));
        tracks.back()->begin();
    }
    writer.begin();
    tqx::Position position;
    forEach(blocks, [&](const tqx::DecodedBlock& decoded) {
        if (tqx::EventGatherer::wants(decoded.block.getNumber()))
            gatherer.take(decoded.record);
        if (readPosition(decoded.record, position)) {
            for (const auto& track : tracks)
                track->add(position);
        }
    });
    gatherer.finish();
    writer.end();
    for (const auto& track : tracks)
        track->end();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::vector<Bytes> blocks = blocksOf(data + 1, size - 1);
    tqx::RinexOptions options;
    options.version = data[0] % 2 == 0 ? tqx::RinexVersion::V305 : tqx::RinexVersion::V402;
    tqx::LogSurvey survey;
    makeObservations(blocks, options, survey);
    makeNavigation(blocks, options, survey);
    makeTracks(blocks);
    return 0;
}
