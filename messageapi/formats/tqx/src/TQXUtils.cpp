#include "TQXUtils.h"

#include "TQX_Format.h"
#include "TQX_FormatInfo.h"

#include "FieldInfo.h"
#include "Message.h"
#include "MessageInfo.h"

#include <mutex>
#include <shared_mutex>

namespace
{

std::shared_mutex fieldMapMutex;

} // namespace

TQXUtils::FieldMap TQXUtils::sTOWFieldMap;
TQXUtils::FieldMap TQXUtils::sWNcFieldMap;

uint32_t TQXUtils::getTOW(const Message* message)
{
    const FieldInfo* field = getTOWFieldInfo(message->getInfo());
    return field != nullptr ? field->getValueUnchecked(message, 0).getU32() : invalidTOW;
}

uint16_t TQXUtils::getWNc(const Message* message)
{
    const FieldInfo* field = getWNcFieldInfo(message->getInfo());
    return field != nullptr ? field->getValueUnchecked(message, 0).getU16() : invalidWNc;
}

uint64_t TQXUtils::getGNSSMillis(const Message* message)
{
    const uint16_t week = getWNc(message);
    const uint32_t timeOfWeek = getTOW(message);
    if (week == invalidWNc || timeOfWeek == invalidTOW) {
        return invalidMillis;
    }
    return uint64_t{Kor::MessageApi::TQX_millisPerWeek} * week + timeOfWeek;
}

const FieldInfo* TQXUtils::getTOWFieldInfo(const MessageInfo* info)
{
    return getFieldInfo(sTOWFieldMap, info, "TOW");
}

const FieldInfo* TQXUtils::getWNcFieldInfo(const MessageInfo* info)
{
    return getFieldInfo(sWNcFieldMap, info, "WNc");
}

const FieldInfo* TQXUtils::getFieldInfo(FieldMap& fields, const MessageInfo* info, const char* name)
{
    {
        const std::shared_lock<std::shared_mutex> reading(fieldMapMutex);
        const auto known = fields.find(info);
        if (known != fields.end()) {
            return known->second;
        }
    }
    const bool isTqx = info->getFormatInfo() == TQX_FormatInfo::getInstance();
    const FieldInfo* field = isTqx ? info->getFieldInfo(QLatin1String(name)) : nullptr;
    const std::lock_guard<std::shared_mutex> writing(fieldMapMutex);
    fields.emplace(info, field);
    return field;
}
