#pragma once

#include "model/LogReading.h"
#include "model/MessageLog.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tqx::view
{

/// A stretch of time, in milliseconds on the log's time scale.
struct TimeSpan {
    double from;
    double to;
};

/// When messages of a type occur.
struct TimelineRow {
    QString name;
    uint64_t count = 0;
    std::optional<double> interval; ///< milliseconds, for regular messages
    std::vector<TimeSpan> present;  ///< to the width of a bin
    std::vector<TimeSpan> missing;  ///< outages: intervals of at least one and a half usual ones
};

/// Something that is wrong with a log.
struct TimelineFault {
    enum class Kind { Outage, Damage };

    Kind kind = Kind::Outage;
    double time = 0; ///< when it began
    double duration = 0;
    uint64_t offset = 0; ///< of damage
    QString type;        ///< type of the outage, empty for all types
    QString text;        ///< for people
};

struct TimelineData {
    std::vector<TimelineRow> rows;     ///< all types together, then each one
    std::vector<TimelineFault> faults; ///< in the order of time
    bool hasMoreFaults = false;        ///< than are listed
};

/// Finds outages and damage in a log, in another thread and in bounded memory.
class Timeline : public LogReading
{
    Q_OBJECT

public:
    explicit Timeline(QObject* parent = nullptr);
    ~Timeline() override;

    /// Starts reading another log, or none; changed() follows when it has been read. With
    /// `isContinued`, what is known of the log so far is kept meanwhile.
    void setLog(std::shared_ptr<const MessageLog> log, bool isContinued = false);

    const TimelineData& getData() const { return *m_data; }

    static constexpr size_t mostFaults = 2000;
    static constexpr size_t bins = 2048;

protected:
    void take(const Result& result) override;

private:
    std::shared_ptr<const TimelineData> m_data;
};

/// Does the work of Timeline in the calling thread; null when the token is cancelled.
std::shared_ptr<const TimelineData> readTimeline(const MessageLog& log, const TaskToken& token);

} // namespace tqx::view
