#pragma once

#include "TQX_FieldInfo.h"

/// getInstance() of the generated classes in the uniform types of the rows.

template<typename Info>
TQX_FieldInfo* TQX_fieldInstance()
{
    return Info::getInstance();
}

template<typename Info>
const MessageInfo* TQX_messageInstance()
{
    return Info::getInstance();
}
