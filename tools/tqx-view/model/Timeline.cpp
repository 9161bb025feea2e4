#include "model/Timeline.h"

#include "tqx/log/summary/Intervals.h"

#include <algorithm>
#include <bitset>
#include <map>
#include <utility>

namespace tqx::view
{

namespace
{

/// What is gathered about a type while the log is read.
struct Gathered {
    explicit Gathered(size_t& room) : intervals(room) {}

    uint64_t count = 0;
    Intervals intervals;
    std::bitset<Timeline::bins> present;
};

class Gatherer
{
public:
    explicit Gatherer(const MessageLog& log)
        : m_first(static_cast<double>(log.getFirstTime().value_or(0))),
          m_last(static_cast<double>(log.getLastTime().value_or(0))), m_all(m_room)
    {
        m_damage = log.findDamage(Timeline::mostFaults);
    }

    void add(const MessageEntry& entry)
    {
        while (m_passed < m_damage.size() && m_damage[m_passed].offset < entry.offset)
            addDamage();
        if (!entry.time)
            return;
        const auto time = static_cast<double>(*entry.time);
        m_time = time;
        Gathered& type = m_types.try_emplace(entry.type, m_room).first->second;
        addTo(type, time);
        addTo(m_all, time);
    }

    std::shared_ptr<const TimelineData> finish()
    {
        while (m_passed < m_damage.size())
            addDamage();
        m_data->hasMoreFaults = m_damage.size() >= Timeline::mostFaults;
        addRow(QObject::tr("All messages"), {}, m_all);
        const std::vector<TimeSpan> everyMissing = m_data->rows.front().missing;
        for (const auto& [name, type] : m_types)
            addRow(name, everyMissing, type);
        std::stable_sort(m_data->faults.begin(), m_data->faults.end(),
                         [](const TimelineFault& left, const TimelineFault& right) {
                             return left.time < right.time;
                         });
        return m_data;
    }

private:
    void addTo(Gathered& to, double time)
    {
        ++to.count;
        to.intervals.add(static_cast<GnssMillis>(time));
        const double share = m_last > m_first ? (time - m_first) / (m_last - m_first) : 0;
        const double bin = std::clamp(share * Timeline::bins, 0.0, Timeline::bins - 1.0);
        to.present.set(static_cast<size_t>(bin));
    }

    void addDamage()
    {
        const MessageLog::Damage& damage = m_damage[m_passed++];
        TimelineFault fault;
        fault.kind = TimelineFault::Kind::Damage;
        fault.time = m_time.value_or(m_first);
        fault.offset = damage.offset;
        fault.text = damage.text;
        m_data->faults.push_back(std::move(fault));
    }

    /// `known` are outages already reported, which include those of the type.
    void addRow(const QString& name, const std::vector<TimeSpan>& known, const Gathered& type)
    {
        TimelineRow row;
        row.name = name;
        row.count = type.count;
        constexpr uint64_t fewest = 3; // two have a single interval, which is no habit
        const std::optional<uint64_t> usual = type.intervals.getUsual();
        if (usual && *usual > 0 && type.count >= fewest) {
            row.interval = static_cast<double>(*usual);
            for (const Intervals::Gap& gap : type.intervals.getGaps(*usual, Timeline::mostFaults)) {
                const auto from = static_cast<double>(gap.after);
                const TimeSpan span = {from, from + static_cast<double>(gap.millis)};
                row.missing.push_back(span);
                const bool isKnown =
                    std::any_of(known.begin(), known.end(), [&](const TimeSpan& other) {
                        return span.from <= other.to && span.to >= other.from;
                    });
                if (!isKnown)
                    addOutage(m_data->rows.empty() ? QString() : name, span, gap.missing);
            }
        }
        const double width = (m_last - m_first) / Timeline::bins;
        for (size_t bin = 0; bin < Timeline::bins; ++bin) {
            if (!type.present[bin])
                continue;
            size_t end = bin + 1;
            while (end < Timeline::bins && type.present[end])
                ++end;
            row.present.push_back({m_first + width * static_cast<double>(bin),
                                   m_first + width * static_cast<double>(end)});
            bin = end;
        }
        joinAcrossBins(row);
        m_data->rows.push_back(std::move(row));
    }

    /// For messages that come less often than once per bin, empty bins are not an outage.
    static void joinAcrossBins(TimelineRow& row)
    {
        if (!row.interval)
            return;
        std::vector<TimeSpan> joined;
        for (const TimeSpan& span : row.present) {
            if (!joined.empty() && span.from - joined.back().to < 1.5 * *row.interval) {
                joined.back().to = span.to;
            } else {
                joined.push_back(span);
            }
        }
        row.present = std::move(joined);
    }

    void addOutage(const QString& type, const TimeSpan& span, uint64_t missing)
    {
        if (m_data->faults.size() >= 2 * Timeline::mostFaults) {
            m_data->hasMoreFaults = true;
            return;
        }
        TimelineFault fault;
        fault.time = span.from;
        fault.duration = span.to - span.from;
        fault.type = type;
        fault.text = QObject::tr("messages missing: %1").arg(missing);
        m_data->faults.push_back(std::move(fault));
    }

    double m_first;
    double m_last;
    size_t m_room = 1 << 20;
    Gathered m_all;
    std::map<QString, Gathered> m_types;
    std::vector<MessageLog::Damage> m_damage;
    size_t m_passed = 0; ///< damage that has been seen
    std::optional<double> m_time;
    std::shared_ptr<TimelineData> m_data = std::make_shared<TimelineData>();
};

} // namespace

std::shared_ptr<const TimelineData> readTimeline(const MessageLog& log, const TaskToken& token)
{
    Gatherer gatherer(log);
    const std::unique_ptr<MessageReader> reader = log.find({});
    MessageEntry entry;
    while (reader->next(entry)) {
        if (token.isCancelled())
            return nullptr;
        gatherer.add(entry);
    }
    return gatherer.finish();
}

Timeline::Timeline(QObject* parent) : LogReading(parent), m_data(std::make_shared<TimelineData>())
{
}

Timeline::~Timeline() = default;

void Timeline::setLog(std::shared_ptr<const MessageLog> log, bool isContinued)
{
    if (!isContinued)
        m_data = std::make_shared<TimelineData>();
    if (!log) {
        stop();
        return;
    }
    start([log = std::move(log)](const TaskToken& token) { return readTimeline(*log, token); },
          isContinued);
}

void Timeline::take(const Result& result)
{
    m_data = std::static_pointer_cast<const TimelineData>(result);
}

} // namespace tqx::view
