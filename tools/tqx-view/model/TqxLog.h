#pragma once

#include "model/MessageLog.h"
#include "model/TqxContent.h"

#include <array>

namespace tqx::view
{

/// The messages of a log of TQX blocks.
class TqxLog : public MessageLog
{
public:
    /// The first one sets up the metadata of the format.
    explicit TqxLog(TqxContent content);

    const TqxContent& getContent() const { return m_content; }

    QString getName() const override;
    uint64_t getSize() const override { return m_content.index->getLogSize(); }
    const std::vector<Type>& getTypes() const override { return m_types; }
    std::optional<int64_t> getFirstTime() const override;
    std::optional<int64_t> getLastTime() const override;
    uint32_t getPageCount() const override { return m_content.index->getPageCount(); }
    uint32_t pageAt(uint64_t offset) const override;
    uint32_t getMessageCount(uint32_t page) const override;
    std::vector<MessageEntry> loadPage(uint32_t page) const override;

    /// Conditions are those of `tqx dump --where`, types may be patterns.
    std::unique_ptr<MessageReader> find(const MessageFilter& filter,
                                        uint32_t firstPage = 0) const override;
    std::vector<Damage> findDamage(size_t most) const override;
    MessageContent load(const MessageEntry& entry) const override;

    int64_t getCalendarShift() const override { return 315'964'800'000; }

    /// "2026-01-06 12:00:00.000" in GNSS time, or the time of day alone.
    QString timeText(int64_t time, bool isShort) const override;
    int64_t parseTime(const QString& text) const override;
    QString unitOf(const FieldInfo& field) const override;

private:
    friend class TqxReader;

    struct Names {
        QString name;
        const MessageInfo* info;
    };
    MessageEntry entryOf(const Block& block) const;
    const Names& namesOf(uint16_t blockNumber) const;

    TqxContent m_content;
    std::vector<Type> m_types;
    std::vector<std::pair<uint16_t, Names>> m_names; ///< by ascending block number
};

} // namespace tqx::view
