#pragma once

#include "model/MessageLog.h"
#include "model/PlotSeries.h"
#include "model/TaskQueue.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace tqx::view
{

/// The values of one numeric field over time, in its unit: one series for each combination of
/// identifying fields (satellite, signal, antenna) and each element of an array. Values that are
/// not available are left out. Read in another thread; memory is bounded.
class PlotField : public QObject
{
    Q_OBJECT

public:
    /// `expression` names the field as PathExpression does.
    explicit PlotField(QString expression, QObject* parent = nullptr);
    ~PlotField() override;

    /// Reads a log from its start, or only what was added when it extends the last one.
    void setLog(std::shared_ptr<const MessageLog> log, bool isContinued);

    const QString& getExpression() const { return m_expression; }

    /// "MeasEpoch2:Type1:CN0 [dB-Hz]"; without the unit while there is no log.
    QString getTitle() const;
    const QString& getUnit() const { return m_unit; }

    /// Named by the identifying fields, "" for fields of the message itself.
    const std::vector<PlotSeries>& getSeries() const { return m_series; }

    /// Whether there is more to read.
    bool isReading() const { return m_isReading; }

    /// Most points that are kept, over all series.
    static constexpr size_t mostPoints = 2'000'000;

Q_SIGNALS:
    void changed();
    void failed(const QString& reason);

private:
    struct Batch;

    void read(uint32_t firstPage);
    void take(const Batch& batch);

    QString m_expression;
    QString m_unit;
    std::shared_ptr<const MessageLog> m_log;
    std::vector<PlotSeries> m_series;
    QStringList m_names; ///< of the series, in the order in which the reader numbers them
    size_t m_points = 0;
    uint64_t m_readTo = 0; ///< offset up to which the log was read
    bool m_isReading = false;
    unsigned m_generation = 0;
    std::shared_ptr<std::atomic<int>> m_pending; ///< batches on their way
    TaskQueue m_tasks;
};

/// The numeric fields of the types in a log, as expressions, those with data only.
QStringList plottableFields(const MessageLog& log);

} // namespace tqx::view
