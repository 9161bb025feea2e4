#pragma once

#include "TQX_FormatInfo.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

/// Metadata of a message type. Throws std::out_of_range when there is none.
inline const MessageInfo& messageInfo(const char* name)
{
    const MessageInfo* info = TQX_FormatInfo::getInstance()->getMessageInfo(name);
    if (!info)
        throw std::out_of_range(std::string("no type ") + name);
    return *info;
}

/// Metadata of a field, likewise.
inline const FieldInfo& fieldInfo(const char* type, const char* name)
{
    const FieldInfo* field = messageInfo(type).getFieldInfo(name);
    if (!field)
        throw std::out_of_range(std::string("no field ") + type + "::" + name);
    return *field;
}
