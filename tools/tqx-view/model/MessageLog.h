#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class FieldInfo;
class FormatInfo;
class Message;
class MessageInfo;

namespace tqx::view
{

/// One message of a log, as lists show it.
struct MessageEntry {
    uint64_t offset = 0; ///< of its first byte in the log
    uint32_t size = 0;   ///< in bytes
    uint32_t page = 0;   ///< that it begins in
    uint16_t place = 0;  ///< orders the messages of a page: ascending and unique
    QString type;
    const MessageInfo* info = nullptr; ///< null for messages of unknown types
    std::optional<int64_t> time;       ///< milliseconds on the log's time scale
};

/// Where a field is in the bytes of its message.
struct FieldBytes {
    QString path; ///< names from the message down, elements with their index: "Type1[0].CN0"
    uint32_t offset = 0;
    uint32_t size = 0; ///< 0 for what is computed from other fields
    unsigned lowestBit = 0;
    unsigned bitCount = 0; ///< 0 for whole bytes
    QString meaning;       ///< in words, where the name does not say it
};

/// Selects messages of a log.
struct MessageFilter {
    QStringList types; ///< names; empty for all
    std::optional<int64_t> from;
    std::optional<int64_t> to; ///< the first time that is not wanted
    QString condition;         ///< in the language of the log's format; empty for none

    bool isEverything() const { return types.isEmpty() && !from && !to && condition.isEmpty(); }
};

/// Walks the messages that a filter selects, in the order of the log. Used by one thread.
class MessageReader
{
public:
    virtual ~MessageReader() = default;

    /// False after the last message. Throws std::exception when the log cannot be read.
    virtual bool next(MessageEntry& entry) = 0;

    /// The message of the last entry, null when it does not decode. Lives until the next call.
    virtual const Message* decode() = 0;

protected:
    MessageReader() = default;
    MessageReader(const MessageReader&) = default;
    MessageReader& operator=(const MessageReader&) = default;
};

/// One message in full.
struct MessageContent {
    std::shared_ptr<const Message> message; ///< null when it does not decode
    QByteArray bytes;
    std::vector<FieldBytes> places;
    QStringList faults; ///< what is wrong with it, in words
};

/// The messages of a log in some format, as far as they were known at one moment: all that the
/// views of messages know of it. A log is divided into pages of consecutive messages, few enough to
/// be loaded at once. It never changes; any number of threads may call it at the same time.
/// Functions that read the log throw std::exception when it cannot be read.
class MessageLog
{
public:
    struct Type {
        QString name;
        const MessageInfo* info; ///< null for unknown types
        uint64_t count;          ///< of messages
    };

    struct Damage {
        uint64_t offset;
        uint64_t size;
        QString text; ///< for people
    };

    virtual ~MessageLog() = default;
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    virtual QString getName() const = 0;
    virtual uint64_t getSize() const = 0; ///< in bytes

    /// The types of which the log has messages, in the order of their names.
    virtual const std::vector<Type>& getTypes() const = 0;
    virtual std::optional<int64_t> getFirstTime() const = 0;
    virtual std::optional<int64_t> getLastTime() const = 0;

    virtual uint32_t getPageCount() const = 0;

    /// The page in which a message around or after a byte of the log begins at the earliest.
    virtual uint32_t pageAt(uint64_t offset) const = 0;
    virtual uint32_t getMessageCount(uint32_t page) const = 0;
    virtual std::vector<MessageEntry> loadPage(uint32_t page) const = 0;

    /// The messages of a filter, from a page on. Throws std::exception with a readable reason for
    /// an invalid filter.
    virtual std::unique_ptr<MessageReader> find(const MessageFilter& filter,
                                                uint32_t firstPage = 0) const = 0;

    /// Stretches of the log that belong to no message and to nothing else that may be in it, in
    /// order; at most `most` of them. None in formats that know no damage.
    virtual std::vector<Damage> findDamage(size_t most) const;

    /// The bytes of a message and the places of its fields. `entry` is from this log.
    virtual MessageContent load(const MessageEntry& entry) const = 0;

    /// Milliseconds from 1970-01-01 00:00 of the calendar to time 0 of the log, for axes with
    /// dates.
    virtual int64_t getCalendarShift() const = 0;

    /// A time for people; short: within a column or below an axis.
    virtual QString timeText(int64_t time, bool isShort) const = 0;

    /// Parses a time as users write it. Throws std::exception with the reason if it is invalid.
    virtual int64_t parseTime(const QString& text) const = 0;

    /// The abbreviation of a field's unit; its name unless the format has a symbol.
    virtual QString unitOf(const FieldInfo& field) const;

protected:
    MessageLog() = default;
};

} // namespace tqx::view
