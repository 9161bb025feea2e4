#pragma once

#include <QString>

class MessageInfo;

class FormatInfo
{
protected:
    explicit FormatInfo(QString) {}
    virtual ~FormatInfo() = default;
    FormatInfo(const FormatInfo&) = default;
    FormatInfo& operator=(const FormatInfo&) = default;
};
