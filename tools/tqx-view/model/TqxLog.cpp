#include "model/TqxLog.h"

#include "tqx/log/DataError.h"
#include "tqx/log/index/BetweenBlocks.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/TimeText.h"
#include "tqx/log/select/TypeSelection.h"

#include <FieldInfo.h>
#include <Message.h>
#include <MessageInfo.h>
#include <TQX_FieldFacts.h>
#include <TQX_FormatInfo.h>
#include <TQX_MessageFactory.h>
#include <TQX_OwnedRecord.h>
#include <TQX_RecordAccess.h>
#include <TQX_codec.h>

#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Kor::MessageApi;

namespace tqx::view
{

namespace
{

/// A reference to a message; removed from whatever thread holds the last one.
std::shared_ptr<const Message> referenceTo(const Message* message)
{
    if (!message)
        return nullptr;
    message->addReference();
    return {message, [](const Message* held) { held->removeReference(); }};
}

/// A record on the stack, released unless a message has taken it.
class StackRecord
{
public:
    StackRecord()
    {
        TQX_init_context(&m_context);
        TQX_markEmpty(&m_record);
    }
    ~StackRecord() { release(); }
    StackRecord(const StackRecord&) = delete;
    StackRecord& operator=(const StackRecord&) = delete;

    bool decode(const Block& block, const WeekContext& week)
    {
        release();
        week.applyTo(m_context);
        return TQX_decode(&m_context, block.data, block.size, &m_record) > 0;
    }
    const void* get() const { return &m_record; }

    /// Null for a type without message class.
    std::shared_ptr<const Message> takeMessage()
    {
        const Message* message = TQX_createMessage(&m_record);
        if (message)
            TQX_markEmpty(&m_record);
        return referenceTo(message);
    }

private:
    void release()
    {
        TQX_release(&m_record);
        TQX_markEmpty(&m_record);
    }

    TQX_Context_s m_context;
    TQX_AnyRecord_u m_record;
};

class DamageList : public StreamListener
{
public:
    explicit DamageList(size_t most) : m_most(most) {}

    void onGap(const StreamGap& gap) override
    {
        if (m_damage.size() < m_most)
            m_damage.push_back({gap.offset, gap.bytes, QString::fromStdString(gap.describe())});
    }
    void onUndecodable(const std::string&, const Block&, int32_t) override {}

    std::vector<MessageLog::Damage> take() { return std::move(m_damage); }

private:
    size_t m_most;
    std::vector<MessageLog::Damage> m_damage;
};

QString asText(const std::string& text)
{
    return QString::fromStdString(text);
}

std::optional<GnssMillis> asGnss(const std::optional<int64_t>& time)
{
    if (!time)
        return std::nullopt;
    return static_cast<GnssMillis>(std::max<int64_t>(*time, 0));
}

std::vector<std::string> asStrings(const QStringList& list)
{
    std::vector<std::string> texts;
    for (const QString& text : list)
        texts.push_back(text.toStdString());
    return texts;
}

} // namespace

/// Blocks that the index finds, decoded only for conditions and for those who ask.
class TqxReader : public MessageReader
{
public:
    TqxReader(const TqxLog& log, const MessageFilter& filter, uint32_t firstPage)
        : m_log(log), m_types(asStrings(filter.types), {}),
          m_blocks(*log.m_content.index, *log.m_content.bytes, query(filter, firstPage))
    {
        if (!filter.condition.isEmpty())
            m_condition = std::make_unique<Condition>(filter.condition.toStdString(), m_types);
    }

    bool next(MessageEntry& entry) override
    {
        m_message = nullptr;
        m_isDecoded = false;
        while (m_blocks.next(m_block)) {
            if (!m_types.accepts(m_block.getNumber()) || !meetsCondition())
                continue;
            entry = m_log.entryOf(m_block);
            return true;
        }
        return false;
    }

    const Message* decode() override
    {
        if (!m_message && (m_isDecoded || m_record.decode(m_block, m_blocks.getContext())))
            m_message = m_record.takeMessage();
        m_isDecoded = false;
        return m_message.get();
    }

private:
    BlockQuery query(const MessageFilter& filter, uint32_t firstPage) const
    {
        BlockQuery query;
        query.from = asGnss(filter.from);
        query.to = asGnss(filter.to);
        query.firstPage = firstPage;
        if (m_types.isEverything())
            return query;
        for (const auto& [number, names] : m_log.m_names) {
            if (m_types.accepts(number))
                query.numbers.push_back(number);
        }
        if (query.numbers.empty())
            query.endPage = 0; // no numbers would be all
        return query;
    }

    bool meetsCondition()
    {
        if (!m_condition)
            return true;
        if (!m_condition->reads(m_block.getNumber()))
            return m_condition->accepts(nullptr);
        m_isDecoded = m_record.decode(m_block, m_blocks.getContext());
        return m_isDecoded && m_condition->accepts(m_record.get());
    }

    const TqxLog& m_log;
    TypeSelection m_types;
    IndexedBlocks m_blocks;
    std::unique_ptr<Condition> m_condition;
    StackRecord m_record;
    std::shared_ptr<const Message> m_message;
    Block m_block = {};
    bool m_isDecoded = false; ///< the record holds the last block
};

TqxLog::TqxLog(TqxContent content) : m_content(std::move(content))
{
    TQX_FormatInfo::getInstance();
    for (const Index::Type& type : m_content.index->getTypes()) {
        const TQX_TypeLayout* layout = TQX_layout(TQX_recordType(type.number));
        Names names{layout ? QString::fromLatin1(layout->name) : QString::number(type.number),
                    nullptr};
        for (const TQX_MessageType& known : TQX_messageTypes()) {
            if (layout && known.recordType == layout->recordType)
                names.info = known.info();
        }
        m_types.push_back({names.name, names.info, type.blocks});
        m_names.emplace_back(type.number, std::move(names));
    }
    std::sort(m_types.begin(), m_types.end(), [](const Type& left, const Type& right) {
        return left.name.compare(right.name, Qt::CaseInsensitive) < 0;
    });
}

QString TqxLog::getName() const
{
    return asText(m_content.name);
}

std::optional<int64_t> TqxLog::getFirstTime() const
{
    return m_content.index->getFirstTime();
}

std::optional<int64_t> TqxLog::getLastTime() const
{
    return m_content.index->getLastTime();
}

uint32_t TqxLog::pageAt(uint64_t offset) const
{
    // A block that reaches across the start of a page begins in the page before.
    const uint64_t page = offset / m_content.index->getPages().pageSize;
    return static_cast<uint32_t>(std::min<uint64_t>(page == 0 ? 0 : page - 1, getPageCount()));
}

uint32_t TqxLog::getMessageCount(uint32_t page) const
{
    return m_content.index->getPages().rowOf(page).blocks;
}

std::vector<MessageEntry> TqxLog::loadPage(uint32_t page) const
{
    std::vector<MessageEntry> entries;
    entries.reserve(getMessageCount(page));
    BlockQuery query;
    query.firstPage = page;
    query.endPage = page + 1;
    IndexedBlocks blocks(*m_content.index, *m_content.bytes, query);
    for (Block block = {}; blocks.next(block);)
        entries.push_back(entryOf(block));
    return entries;
}

const TqxLog::Names& TqxLog::namesOf(uint16_t blockNumber) const
{
    return std::lower_bound(m_names.begin(), m_names.end(), blockNumber,
                            [](const auto& names, uint16_t number) { return names.first < number; })
        ->second;
}

MessageEntry TqxLog::entryOf(const Block& block) const
{
    const Names& names = namesOf(block.getNumber());
    const uint32_t pageSize = m_content.index->getPages().pageSize;
    MessageEntry entry;
    entry.offset = block.offset;
    entry.size = block.size;
    entry.page = static_cast<uint32_t>(block.offset / pageSize);
    entry.place = static_cast<uint16_t>(block.offset % pageSize);
    entry.type = names.name;
    entry.info = names.info;
    entry.time = block.getTime();
    return entry;
}

std::unique_ptr<MessageReader> TqxLog::find(const MessageFilter& filter, uint32_t firstPage) const
{
    return std::make_unique<TqxReader>(*this, filter, firstPage);
}

std::vector<MessageLog::Damage> TqxLog::findDamage(size_t most) const
{
    DamageList damage(most);
    reportBetweenBlocks(*m_content.index, *m_content.bytes, &damage);
    return damage.take();
}

MessageContent TqxLog::load(const MessageEntry& entry) const
{
    MessageContent content;
    BlockQuery query;
    query.firstPage = entry.page;
    query.endPage = entry.page + 1;
    IndexedBlocks blocks(*m_content.index, *m_content.bytes, query);
    Block block = {};
    bool isFound = false;
    while (!isFound && blocks.next(block))
        isFound = block.offset == entry.offset;
    if (!isFound)
        throw SourceError(m_content.name + ": has changed");
    content.bytes = QByteArray(reinterpret_cast<const char*>(block.data), block.size);
    StackRecord record;
    if (record.decode(block, blocks.getContext()))
        content.message = record.takeMessage();
    const Inspection inspection = inspect(block);
    for (const std::string& fault : inspection.faults)
        content.faults.push_back(asText(fault));
    for (const InspectionRow& row : inspection.rows) {
        if (row.field) {
            content.places.push_back({asText(row.path), row.offset, row.size, row.lowestBit(),
                                      row.bitCount(), QString::fromUtf8(row.meaning())});
        }
    }
    return content;
}

QString TqxLog::timeText(int64_t time, bool isShort) const
{
    QString date = asText(dateText(static_cast<GnssMillis>(time)));
    return isShort ? date.mid(11) : date.replace('T', ' ');
}

int64_t TqxLog::parseTime(const QString& text) const
{
    QString whole = text.trimmed();
    const bool isDate = whole.size() > 4 && whole[4] == '-';
    if (isDate && !whole.endsWith('Z') && !whole.contains(QLatin1String("GPS")) &&
        !whole.contains(QLatin1String("UTC")))
        whole += QLatin1String(" GPS");
    return static_cast<int64_t>(tqx::parseTime("time", whole.toStdString()));
}

QString TqxLog::unitOf(const FieldInfo& field) const
{
    const std::string word = field.getUnit().toStdString();
    const std::string_view symbol = TQX_unitSymbol(word);
    return symbol.empty() ? field.getUnit()
                          : QString::fromUtf8(symbol.data(), static_cast<int>(symbol.size()));
}

} // namespace tqx::view
