#pragma once

#include "tqx_export.h"

#include <cstdint>
#include <unordered_map>

class FieldInfo;
class Message;
class MessageInfo;

/// The time in the header of any TQX message, read through its metadata. What each message type has
/// is looked up once per process, under a lock: any thread may ask about its own messages. Nothing
/// throws; messages are not null and, if they are TQX messages, hold a record.
class TQX_API TQXUtils
{
public:
    /// "Not available" of getTOW, getWNc and getGNSSMillis.
    static constexpr uint32_t invalidTOW = 0xffffffff;
    static constexpr uint16_t invalidWNc = 0xffff;
    static constexpr uint64_t invalidMillis = 0xffffffffffffffff;

    /// Time of week in milliseconds; invalidTOW also for sub-blocks and messages of other formats.
    static uint32_t getTOW(const Message* message);

    /// Continuous week number; invalidWNc also for sub-blocks and messages of other formats.
    static uint16_t getWNc(const Message* message);

    /// Milliseconds since the start of week 0, invalidMillis if week or time of week is.
    static uint64_t getGNSSMillis(const Message* message);

    TQXUtils() = delete;

private:
    using FieldMap = std::unordered_map<const MessageInfo*, const FieldInfo*>;

    static const FieldInfo* getTOWFieldInfo(const MessageInfo* info);
    static const FieldInfo* getWNcFieldInfo(const MessageInfo* info);
    static const FieldInfo* getFieldInfo(FieldMap& fields, const MessageInfo* info,
                                         const char* name);

    static FieldMap sTOWFieldMap;
    static FieldMap sWNcFieldMap;
};
