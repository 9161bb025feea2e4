#pragma once

#include <QString>

class MessageInfo;

class Message
{
public:
    virtual ~Message() = default;
    const MessageInfo* getInfo() const { return nullptr; }

    inline static QString doNotUseString;
    inline static bool useDoNotUseString = false;

protected:
    const void* getRawRepresentationOf(const Message*) const { return nullptr; }
};
