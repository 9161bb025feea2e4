#include "FormatInfo.h"

#include "OwnedString.h"

#include <mutex>

namespace
{

struct FormatList {
    std::mutex mutex;
    QVector<const FormatInfo*> formats;
};

/// Never destroyed: formats of other libraries leave it during static destruction.
FormatList& formatList()
{
    static auto* const list = new FormatList;
    return *list;
}

const MessageInfo* findByName(const QVector<const MessageInfo*>& infos, const QString& name)
{
    for (const MessageInfo* info : infos) {
        if (info->getName() == name) {
            return info;
        }
    }
    return nullptr;
}

[[maybe_unused]] const int registered = qRegisterMetaType<const FormatInfo*>("const FormatInfo*");

} // namespace

FormatInfo::FormatInfo(QString name) : m_name(ownedString(std::move(name)))
{
    FormatList& list = formatList();
    const std::lock_guard<std::mutex> guard(list.mutex);
    list.formats.append(this);
}

FormatInfo::FormatInfo(const FormatInfo&) = default;
FormatInfo& FormatInfo::operator=(const FormatInfo&) = default;

FormatInfo::~FormatInfo()
{
    FormatList& list = formatList();
    const std::lock_guard<std::mutex> guard(list.mutex);
    list.formats.removeOne(this);
}

const MessageInfo* FormatInfo::getMessageInfo(const QString& name) const
{
    const MessageInfo* info = findByName(m_messageInfos, name);
    return info ? info : findByName(m_subMessageInfos, name);
}

QVector<const FormatInfo*> FormatInfo::getFormats()
{
    FormatList& list = formatList();
    const std::lock_guard<std::mutex> guard(list.mutex);
    return list.formats;
}

const FormatInfo* FormatInfo::getFormat(const QString& name)
{
    const auto formats = getFormats();
    for (const FormatInfo* format : formats) {
        if (format->getName() == name) {
            return format;
        }
    }
    return nullptr;
}

void FormatInfo::addMessageInfo(const MessageInfo* info)
{
    m_messageInfos.append(info);
    m_allMessageInfos.append(info);
}

void FormatInfo::addSubMessageInfo(const MessageInfo* info)
{
    m_subMessageInfos.append(info);
    m_allMessageInfos.append(info);
}
