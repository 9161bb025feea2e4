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

void list(const QVector<const FormatInfo*>& formats)
{
    FormatList& list = formatList();
    const std::lock_guard<std::mutex> guard(list.mutex);
    list.formats += formats;
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
    if (SetUp* const setUp = outermostSetUp()) {
        setUp->m_withheld.append(this);
    } else {
        list({this});
    }
}

FormatInfo::FormatInfo(const FormatInfo&) = default;
FormatInfo& FormatInfo::operator=(const FormatInfo&) = default;

FormatInfo::~FormatInfo()
{
    if (SetUp* const setUp = outermostSetUp())
        setUp->m_withheld.removeOne(this);
    FormatList& list = formatList();
    const std::lock_guard<std::mutex> guard(list.mutex);
    list.formats.removeOne(this);
}

FormatInfo::SetUp*& FormatInfo::outermostSetUp()
{
    static thread_local SetUp* setUp = nullptr;
    return setUp;
}

FormatInfo::SetUp::SetUp() : m_isOutermost(!outermostSetUp())
{
    if (m_isOutermost)
        outermostSetUp() = this;
}

FormatInfo::SetUp::~SetUp()
{
    if (m_isOutermost) {
        outermostSetUp() = nullptr;
        list(m_withheld);
    }
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
