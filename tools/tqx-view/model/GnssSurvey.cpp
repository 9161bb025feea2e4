#include "model/GnssSurvey.h"

#include "model/TqxLog.h"

#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/log/index/IndexedBlocks.h"

#include <TQX_OwnedRecord.h>

#include <algorithm>
#include <map>
#include <utility>

namespace tqx::view
{

namespace
{

/// Keeps all of the first elements, then every second one, and so on: at most twice as many as
/// requested.
template<typename Element>
class Thinned
{
public:
    explicit Thinned(size_t most) : m_most(most) {}

    bool wantsNext() { return m_count++ % m_stride == 0; }

    void add(Element element)
    {
        m_kept.push_back(std::move(element));
        if (m_kept.size() < 2 * m_most)
            return;
        for (size_t i = 0; 2 * i < m_kept.size(); ++i)
            m_kept[i] = std::move(m_kept[2 * i]);
        m_kept.resize((m_kept.size() + 1) / 2);
        m_stride *= 2;
    }

    uint64_t getCount() const { return m_count; }
    std::vector<Element> take() { return std::move(m_kept); }

private:
    size_t m_most;
    std::vector<Element> m_kept;
    uint64_t m_stride = 1;
    uint64_t m_count = 0;
};

/// Records the spans in which each signal is tracked.
class VisibilityTracker
{
public:
    void add(const ObservationEpoch& epoch)
    {
        const auto time = static_cast<double>(epoch.time);
        const double step = m_last > 0 ? time - m_last : 0;
        // An outage ends all spans; the shortest step so far is the interval of the epochs.
        if (step > 0 && (m_interval == 0 || step < m_interval))
            m_interval = step;
        const bool goesOn = step > 0 && step < 1.5 * m_interval;
        for (const Observation& observation : epoch.observations) {
            if (observation.antenna != 0)
                continue;
            Signal& signal = m_signals[{observation.satellite, observation.code}];
            const bool isSeen = goesOn && !signal.spans.empty() && signal.spans.back().to == m_last;
            if (isSeen) {
                signal.spans.back().to = time;
            } else if (m_count < GnssSurvey::mostSpans) {
                begin(signal, time);
            }
        }
        m_last = time;
    }

    std::vector<Visibility> take()
    {
        std::vector<Visibility> all;
        for (auto& [key, signal] : m_signals)
            all.push_back({key.first, key.second, std::move(signal.spans)});
        // In the order in which files list the systems.
        std::stable_sort(
            all.begin(), all.end(), [](const Visibility& left, const Visibility& right) {
                return systemIndex(left.satellite.system) < systemIndex(right.satellite.system);
            });
        return all;
    }

private:
    struct Signal {
        std::vector<Visibility::Span> spans;
    };

    void begin(Signal& signal, double time)
    {
        ++m_count;
        signal.spans.push_back({time, time});
    }

    std::map<std::pair<SatelliteId, SignalCode>, Signal> m_signals;
    size_t m_count = 0;
    double m_last = 0;
    double m_interval = 0;
};

class Reader
{
public:
    Reader()
        : m_gatherer([this](ObservationEpoch& epoch) {
              addEpoch(epoch);
              return true;
          })
    {
    }

    static std::vector<uint16_t> wantedOf(const Index& index)
    {
        std::vector<uint16_t> numbers;
        for (const Index::Type& type : index.getTypes()) {
            if (ObservationGatherer::wants(type.number) || positionSource(type.number) ||
                holdsDirections(type.number))
                numbers.push_back(type.number);
        }
        return numbers;
    }

    void add(const DecodedBlock& decoded)
    {
        const uint16_t number = decoded.block.getNumber();
        if (ObservationGatherer::wants(number))
            m_gatherer.take(decoded);
        if (positionSource(number))
            addPosition(decoded.record);
        if (holdsDirections(number) && decoded.block.getTime() && m_directions.wantsNext()) {
            m_directions.add(
                {static_cast<double>(*decoded.block.getTime()), directionsIn(decoded.record)});
        }
    }

    std::shared_ptr<const GnssData> finish()
    {
        m_gatherer.finish();
        auto data = std::make_shared<GnssData>();
        data->strengths = m_strengths.take();
        data->directions = m_directions.take();
        data->visibility = m_visibility.take();
        if (const PositionSource* best = m_choice.best()) {
            Thinned<TrackPoint>& track = m_tracks.at(best);
            data->positions = track.getCount();
            data->track = track.take();
            data->trackSource = QString::fromLatin1(best->name);
        }
        return data;
    }

private:
    void addEpoch(const ObservationEpoch& epoch)
    {
        m_visibility.add(epoch);
        if (!m_strengths.wantsNext())
            return;
        SkyEpoch kept{static_cast<double>(epoch.time), {}};
        for (const Observation& observation : epoch.observations) {
            if (observation.antenna == 0 && !std::isnan(observation.cn0)) {
                kept.signals.push_back(
                    {observation.satellite, observation.code, static_cast<float>(observation.cn0)});
            }
        }
        m_strengths.add(std::move(kept));
    }

    void addPosition(const void* record)
    {
        Position position;
        if (!readPosition(record, position) || position.fix == Fix::None)
            return;
        m_choice.take(position);
        Thinned<TrackPoint>& track =
            m_tracks.try_emplace(position.source, GnssSurvey::mostPositions).first->second;
        if (track.wantsNext()) {
            track.add({static_cast<double>(position.time), position.latitude, position.longitude,
                       position.height, position.fix});
        }
    }

    ObservationGatherer m_gatherer;
    Thinned<SkyEpoch> m_strengths{GnssSurvey::mostEpochs};
    Thinned<DirectionEpoch> m_directions{GnssSurvey::mostEpochs};
    VisibilityTracker m_visibility;
    SourceChoice m_choice;
    std::map<const PositionSource*, Thinned<TrackPoint>> m_tracks;
};

} // namespace

std::shared_ptr<const GnssData> readGnss(const TqxLog& log, const TaskToken& token)
{
    const TqxContent& content = log.getContent();
    Reader reader;
    BlockQuery query;
    query.numbers = Reader::wantedOf(*content.index);
    if (query.numbers.empty())
        return reader.finish();
    IndexedBlocks blocks(*content.index, *content.bytes, query);
    Kor::MessageApi::TQX_Context_s context;
    TQX_init_context(&context);
    Kor::MessageApi::TQX_OwnedRecord record;
    for (Block block = {}; blocks.next(block);) {
        if (token.isCancelled())
            return nullptr;
        blocks.getContext().applyTo(context);
        const int32_t consumed = record.decode(&context, block.data, block.size);
        if (consumed > 0)
            reader.add({block, record.get(), consumed});
    }
    return reader.finish();
}

GnssSurvey::GnssSurvey(QObject* parent) : LogReading(parent), m_data(std::make_shared<GnssData>())
{
}

GnssSurvey::~GnssSurvey() = default;

void GnssSurvey::setLog(std::shared_ptr<const TqxLog> log, bool isContinued)
{
    if (!isContinued)
        m_data = std::make_shared<GnssData>();
    if (!log) {
        stop();
        return;
    }
    start([log = std::move(log)](const TaskToken& token) { return readGnss(*log, token); },
          isContinued);
}

void GnssSurvey::take(const Result& result)
{
    m_data = std::static_pointer_cast<const GnssData>(result);
}

} // namespace tqx::view
