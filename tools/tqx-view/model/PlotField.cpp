#include "model/PlotField.h"

#include "model/FieldRows.h"

#include <FieldInfo.h>
#include <FormatInfo.h>
#include <Message.h>
#include <MessageApiEvent.h>
#include <MessageInfo.h>
#include <PathExpression.h>

#include <QElapsedTimer>
#include <QThread>

#include <cmath>
#include <exception>
#include <unordered_map>
#include <utility>

namespace tqx::view
{

/// Points on their way to the series.
struct PlotField::Batch {
    struct Point {
        int series;
        double time;
        double value;
    };
    std::vector<Point> points;
    QStringList newNames; ///< of series that come after those known
    uint64_t readTo = 0;
    bool isComplete = false;
    QString reason; ///< why reading ended early
    unsigned generation = 0;
};

namespace
{

constexpr qint64 reportEveryMillis = 250;
constexpr size_t mostAtOnce = 50'000;
constexpr int mostPending = 2; // so as not to block the receiver, and to bound memory

/// The fields from a message down to the one that is plotted.
std::vector<const FieldInfo*> fieldsOf(const QString& expression)
{
    const QStringList parts = expression.split(':');
    std::vector<const FieldInfo*> fields;
    for (int i = 3; i <= parts.size(); ++i) {
        const FieldInfo* field =
            PathExpression::getUniqueFieldInfo(QStringList(parts.mid(0, i)).join(':'));
        if (!field)
            return {};
        // A bit range belongs to the same message as its word.
        if (!fields.empty() && fields.back()->getType().getKind() != FieldKind::SubMessage)
            fields.pop_back();
        fields.push_back(field);
    }
    return fields;
}

/// Reads the values of a field in messages and knows which series each belongs to.
class SeriesReader
{
public:
    explicit SeriesReader(std::vector<const FieldInfo*> fields) : m_fields(std::move(fields)) {}

    /// Calls `visit(series, value)` for each value that is available.
    template<typename Visit>
    void read(const Message& message, const Visit& visit)
    {
        m_key.clear();
        readPart(message, 0, visit);
    }

    QStringList takeNewNames() { return std::exchange(m_newNames, {}); }
    void know(const QStringList& names) { m_known = names; }

private:
    template<typename Visit>
    void readPart(const Message& message, size_t depth, const Visit& visit)
    {
        const FieldInfo& field = *m_fields[depth];
        if (!field.hasValue(&message))
            return;
        const unsigned count = field.getNumberOfValues(&message);
        const bool isLast = depth + 1 == m_fields.size();
        const size_t keySize = m_key.size();
        for (unsigned i = 0; i < count; ++i) {
            const FieldValue value = field.getValueUnchecked(&message, i);
            if (isLast) {
                if (count > 1)
                    appendKey(i);
                const bool isNamed = field.findSymbolicValue(value) != nullptr;
                if (isNamed || !field.isDoNotUse(value)) {
                    const double number = value.toDouble() * field.getScaleFactor();
                    if (std::isfinite(number))
                        visit(seriesOf(message, count > 1 ? int(i) : -1), number);
                }
            } else if (const Message* part = value.getSubMessage()) {
                appendIdentity(*part);
                readPart(*part, depth + 1, visit);
            }
            m_key.resize(keySize);
        }
    }

    void appendKey(double number)
    {
        m_key.append(reinterpret_cast<const char*>(&number), sizeof number);
    }

    void appendIdentity(const Message& part)
    {
        const MessageInfo& info = *part.getInfo();
        const QVector<const FieldInfo*>& fields = info.getFieldInfos();
        for (int i = 0; i < fields.size(); ++i) {
            if (!info.isIdentifying(i) || !fields[i]->hasValue(&part))
                continue;
            const FieldValue value = fields[i]->getValueUnchecked(&part, 0);
            if (value.isInteger() || value.isFloat())
                appendKey(value.toDouble());
        }
    }

    int seriesOf(const Message& innermost, int element)
    {
        const auto found = m_series.find(m_key);
        if (found != m_series.end())
            return found->second;
        QStringList parts;
        for (const Message* part = &innermost; part && part->getParentMessage();
             part = part->getParentMessage()) {
            const QString identity = identityOf(*part);
            if (!identity.isEmpty())
                parts.prepend(identity);
        }
        if (element >= 0)
            parts += QString("[%1]").arg(element);
        const QString name = parts.join(", ");
        // A reader that continues where another one ended finds its series by name.
        auto series = static_cast<int>(m_known.indexOf(name));
        if (series < 0) {
            series = static_cast<int>(m_known.size());
            m_known += name;
            m_newNames += name;
        }
        m_series.emplace(m_key, series);
        return series;
    }

    std::vector<const FieldInfo*> m_fields;
    std::string m_key; ///< values of the identifying fields on the way down
    std::unordered_map<std::string, int> m_series;
    QStringList m_known;
    QStringList m_newNames;
};

void addPlottable(const MessageInfo& info, const QString& path, int depth, QStringList& found)
{
    for (const FieldInfo* field : info.getFieldInfos()) {
        if (const MessageInfo* part = field->getType().getSubMessageInfo()) {
            if (depth < 4)
                addPlottable(*part, path + ':' + field->getName(), depth + 1, found);
        } else if (isNumeric(*field) && field->getRole() == FieldInfo::Data) {
            found += path + ':' + field->getName();
        }
    }
}

} // namespace

PlotField::PlotField(QString expression, QObject* parent)
    : QObject(parent), m_expression(std::move(expression)),
      m_pending(std::make_shared<std::atomic<int>>(0))
{
}

PlotField::~PlotField() = default;

QString PlotField::getTitle() const
{
    const QString name = m_expression.section(':', 1);
    return m_unit.isEmpty() ? name : name + " [" + m_unit + ']';
}

void PlotField::setLog(std::shared_ptr<const MessageLog> log, bool isContinued)
{
    const bool goesOn = isContinued && m_log && log;
    const uint32_t firstPage = goesOn ? log->pageAt(m_readTo) : 0;
    m_tasks.cancel();
    m_pending = std::make_shared<std::atomic<int>>(0);
    ++m_generation;
    m_log = std::move(log);
    if (!goesOn) {
        m_series.clear();
        m_names.clear();
        m_points = 0;
        m_readTo = 0;
    }
    m_isReading = m_log != nullptr;
    Q_EMIT changed();
    if (m_log)
        read(firstPage);
}

void PlotField::read(uint32_t firstPage)
{
    std::vector<const FieldInfo*> fields;
    try {
        fields = fieldsOf(m_expression);
    } catch (const MessageApiEvent&) {
        fields.clear(); // no such format or type
    }
    if (fields.empty() || !isNumeric(*fields.back())) {
        m_isReading = false;
        Q_EMIT failed(tr("%1 is not a numeric field").arg(m_expression));
        return;
    }
    m_unit = m_log->unitOf(*fields.back());
    m_tasks.run([this, log = m_log, fields, firstPage, readTo = m_readTo, names = m_names,
                 type = m_expression.section(':', 1, 1), pending = m_pending,
                 generation = m_generation](const TaskToken& token) {
        SeriesReader series(fields);
        series.know(names);
        Batch batch;
        batch.generation = generation;
        batch.readTo = readTo;
        const auto report = [&] {
            batch.newNames = series.takeNewNames();
            while (*pending >= mostPending && !token.isCancelled())
                QThread::msleep(1);
            ++*pending;
            QMetaObject::invokeMethod(
                this,
                [this, pending, some = std::move(batch)] {
                    --*pending;
                    take(some);
                },
                Qt::QueuedConnection);
            batch = Batch();
            batch.generation = generation;
        };
        uint64_t end = readTo;
        try {
            MessageFilter filter;
            filter.types += type;
            const std::unique_ptr<MessageReader> reader = log->find(filter, firstPage);
            QElapsedTimer sinceReport;
            sinceReport.start();
            MessageEntry entry;
            while (!token.isCancelled() && reader->next(entry)) {
                if (entry.offset < readTo || !entry.time)
                    continue;
                end = entry.offset + entry.size;
                const Message* message = reader->decode();
                if (!message)
                    continue;
                const auto time = static_cast<double>(*entry.time);
                series.read(*message, [&](int number, double value) {
                    batch.points.push_back({number, time, value});
                });
                if (batch.points.size() >= mostAtOnce ||
                    sinceReport.elapsed() > reportEveryMillis) {
                    batch.readTo = end;
                    report();
                    sinceReport.restart();
                }
            }
        } catch (const std::exception& error) {
            batch.reason = QString::fromUtf8(error.what());
        }
        batch.readTo = end;
        batch.isComplete = true;
        report();
    });
}

void PlotField::take(const Batch& batch)
{
    if (batch.generation != m_generation)
        return;
    for (const QString& name : batch.newNames) {
        m_names += name;
        m_series.emplace_back(name);
    }
    for (const Batch::Point& point : batch.points)
        m_series[static_cast<size_t>(point.series)].add(point.time, point.value);
    m_points += batch.points.size();
    if (m_points > mostPoints) {
        m_points = 0;
        for (PlotSeries& series : m_series) {
            series.thin();
            m_points += series.size();
        }
    }
    m_readTo = batch.readTo;
    m_isReading = !batch.isComplete;
    Q_EMIT changed();
    if (!batch.reason.isEmpty())
        Q_EMIT failed(batch.reason);
}

QStringList plottableFields(const MessageLog& log)
{
    QStringList found;
    for (const MessageLog::Type& type : log.getTypes()) {
        if (!type.info || !type.info->getFormatInfo())
            continue;
        addPlottable(*type.info, type.info->getFormatInfo()->getName() + ':' + type.name, 0, found);
    }
    return found;
}

} // namespace tqx::view
