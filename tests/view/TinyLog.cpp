#include "TinyLog.h"

#include <algorithm>
#include <stdexcept>

using namespace tqx::view;

/// Speed has a value with unit and scale, Temp nested readings with an identity.
struct TinyLog::Format {
    Format() : format("Tiny"), speed("Speed"), temp("Temp"), reading("Reading")
    {
        value.setUnit("knots");
        value.setScaleFactor(0.1);
        value.setPrecision(1);
        degrees.setUnit("C");
        speed.addFieldInfo(&kind, 0, false);
        speed.addFieldInfo(&place, 1, false);
        speed.addFieldInfo(&value, 2, false);
        reading.addFieldInfo(&sensor, 0, true);
        reading.addFieldInfo(&degrees, 1, false);
        reading.setIsMain(false);
        temp.addFieldInfo(&kind, 0, false);
        temp.addFieldInfo(&readings, 1, false);
        format.addMessageInfo(&speed);
        format.addMessageInfo(&temp);
        format.addSubMessageInfo(&reading);
        for (ToyInfo* info : {&speed, &temp, &reading})
            info->setFormatInfo(&format);
    }

    ToyFormat format;
    ToyInfo speed;
    ToyInfo temp;
    ToyInfo reading;
    ToyField kind{"Kind", FieldType::ch(), 0};
    ToyField place{"Place", FieldType::u(8), 1};
    ToyField value{"Value", FieldType::u(16), 2};
    ToyField sensor{"Sensor", FieldType::u(8), 0};
    ToyField degrees{"Degrees", FieldType::i(16), 1};
    ToyField readings{"Readings", FieldType::subMessage(&reading), 1};
};

namespace
{

class TinyReader : public MessageReader
{
public:
    TinyReader(const TinyLog& log, MessageFilter filter, uint64_t first)
        : m_log(log), m_filter(std::move(filter)), m_next(first)
    {
    }

    bool next(MessageEntry& entry) override
    {
        for (; m_next < m_log.getCount(); ++m_next) {
            if (m_log.onRead)
                m_log.onRead();
            entry = m_log.entryAt(m_next);
            if ((!m_filter.types.isEmpty() && !m_filter.types.contains(entry.type)) ||
                (m_filter.from && *entry.time < *m_filter.from) ||
                (m_filter.to && *entry.time >= *m_filter.to))
                continue;
            ++m_next;
            return true;
        }
        return false;
    }

    const Message* decode() override
    {
        m_message = m_log.messageAt(m_next - 1);
        return m_message.get();
    }

private:
    const TinyLog& m_log;
    MessageFilter m_filter;
    uint64_t m_next;
    std::shared_ptr<const Message> m_message;
};

} // namespace

TinyLog::TinyLog(uint64_t count, uint32_t perPage, uint32_t spacing)
    : m_count(count), m_perPage(perPage), m_spacing(spacing)
{
    static const Format format;
    m_format = &format;
    const uint64_t temps = (count + 4) / 5;
    m_types.push_back({"Speed", &m_format->speed, count - temps});
    m_types.push_back({"Temp", &m_format->temp, temps});
}

TinyLog::~TinyLog() = default;

void TinyLog::addTypes(int count)
{
    for (int i = 0; i < count; ++i)
        m_types.push_back({QString("Speed%1").arg(i, 5, 10, QChar('0')), &m_format->speed, 1});
}

std::optional<int64_t> TinyLog::getFirstTime() const
{
    return m_count > 0 ? std::optional<int64_t>(0) : std::nullopt;
}

std::optional<int64_t> TinyLog::getLastTime() const
{
    return m_count > 0 ? std::optional(static_cast<int64_t>(m_count - 1) * 1000) : std::nullopt;
}

uint32_t TinyLog::getPageCount() const
{
    return static_cast<uint32_t>((m_count + m_perPage - 1) / m_perPage);
}

uint32_t TinyLog::pageAt(uint64_t offset) const
{
    return static_cast<uint32_t>(offset / m_spacing / m_perPage);
}

uint32_t TinyLog::getMessageCount(uint32_t page) const
{
    return static_cast<uint32_t>(
        std::min<uint64_t>(m_perPage, m_count - uint64_t{page} * m_perPage));
}

MessageEntry TinyLog::entryAt(uint64_t number) const
{
    const Type& type = m_types[number % 5 == 0 ? 1 : 0];
    MessageEntry entry;
    entry.offset = m_spacing * number;
    entry.size = 4;
    entry.page = static_cast<uint32_t>(number / m_perPage);
    entry.place = static_cast<uint16_t>(number % m_perPage);
    entry.type = type.name;
    entry.info = type.info;
    entry.time = static_cast<int64_t>(number) * 1000;
    return entry;
}

std::shared_ptr<const Message> TinyLog::messageAt(uint64_t number) const
{
    const auto share = [](const Message* message) {
        message->addReference();
        return std::shared_ptr<const Message>(message,
                                              [](const Message* m) { m->removeReference(); });
    };
    const bool isTemp = number % 5 == 0;
    const FieldValue kind = FieldValue::ch(isTemp ? 't' : 's');
    if (!isTemp) {
        return share(new ToyMessage(
            &m_format->speed,
            {{kind}, {FieldValue::u(number % 256, 8)}, {FieldValue::u(number % 1000, 16)}}));
    }
    auto* message = new ToyMessage(&m_format->temp, {{kind}, {}});
    for (unsigned sensor = 1; sensor <= 2; ++sensor) {
        auto* part = new ToyMessage(
            &m_format->reading,
            {{FieldValue::u(sensor, 8)},
             {FieldValue::i(static_cast<long long>(number % 40) * (sensor == 1 ? 1 : -1), 16)}});
        message->adopt(part);
        message->values[1] += FieldValue::subMessage(part);
    }
    return share(message);
}

std::vector<MessageEntry> TinyLog::loadPage(uint32_t page) const
{
    if (onRead)
        onRead();
    std::vector<MessageEntry> entries;
    for (uint32_t i = 0; i < getMessageCount(page); ++i)
        entries.push_back(entryAt(uint64_t{page} * m_perPage + i));
    return entries;
}

std::unique_ptr<MessageReader> TinyLog::find(const MessageFilter& filter, uint32_t firstPage) const
{
    if (!filter.condition.isEmpty())
        throw std::runtime_error("tiny logs know no conditions");
    return std::make_unique<TinyReader>(*this, filter, uint64_t{firstPage} * m_perPage);
}

MessageContent TinyLog::load(const MessageEntry& entry) const
{
    MessageContent content;
    const uint64_t number = entry.offset / m_spacing;
    content.message = messageAt(number);
    content.bytes = QByteArray("s\0\0\0", 4);
    content.bytes[0] = number % 5 == 0 ? 't' : 's';
    content.bytes[1] = static_cast<char>(number % 256);
    content.places = {
        {"Kind", 0, 1, 0, 0, "what it is"}, {"Place", 1, 1, 0, 0, {}}, {"Value", 2, 2, 0, 0, {}}};
    return content;
}

QString TinyLog::timeText(int64_t time, bool) const
{
    return QString("%1 s").arg(time / 1000);
}

int64_t TinyLog::parseTime(const QString& text) const
{
    bool isNumber = false;
    const qlonglong seconds = text.toLongLong(&isNumber);
    if (!isNumber)
        throw std::runtime_error("no time");
    return seconds * 1000;
}
