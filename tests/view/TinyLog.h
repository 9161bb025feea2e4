#pragma once

#include "Toy.h"

#include "model/MessageLog.h"

#include <functional>

/// A format of two types that has nothing to do with any receiver: messages of four bytes, a type
/// ('s' or 't'), a place and a 16-bit value. A page is ten messages.
class TinyLog : public tqx::view::MessageLog
{
public:
    /// `count` messages, a second apart; every fifth of type "Temp". Messages are made when they
    /// are asked for, so that there can be any number of them. `spacing` is from the first byte of
    /// one to that of the next.
    explicit TinyLog(uint64_t count, uint32_t perPage = 10, uint32_t spacing = 4);

    /// As if the log had so many types more, with a message each.
    void addTypes(int count);
    ~TinyLog() override;

    /// Waits before a page is loaded or a message found.
    std::function<void()> onRead;

    QString getName() const override { return "tiny"; }
    uint64_t getSize() const override { return m_spacing * m_count; }
    const std::vector<Type>& getTypes() const override { return m_types; }
    std::optional<int64_t> getFirstTime() const override;
    std::optional<int64_t> getLastTime() const override;
    uint32_t getPageCount() const override;
    uint32_t pageAt(uint64_t offset) const override;
    uint32_t getMessageCount(uint32_t page) const override;
    std::vector<tqx::view::MessageEntry> loadPage(uint32_t page) const override;
    std::unique_ptr<tqx::view::MessageReader> find(const tqx::view::MessageFilter& filter,
                                                   uint32_t firstPage) const override;
    tqx::view::MessageContent load(const tqx::view::MessageEntry& entry) const override;
    int64_t getCalendarShift() const override { return 0; }
    QString timeText(int64_t time, bool isShort) const override;
    int64_t parseTime(const QString& text) const override;

    tqx::view::MessageEntry entryAt(uint64_t number) const;
    std::shared_ptr<const Message> messageAt(uint64_t number) const;
    uint64_t getCount() const { return m_count; }

private:
    struct Format;

    uint64_t m_count;
    uint32_t m_perPage;
    uint64_t m_spacing;
    const Format* m_format; ///< one for all logs
    std::vector<Type> m_types;
};
