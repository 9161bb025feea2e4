#include "MessageInfo.h"

#include "OwnedString.h"

#include <QByteArray>

#include <algorithm>

namespace
{

/// Keeps no data of the caller's library, see ownedString.
QVariant ownedVariant(QVariant value)
{
    if (value.userType() == QMetaType::QString) {
        return ownedString(value.toString());
    }
    if (value.userType() == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        return QByteArray(bytes.constData(), bytes.size());
    }
    return value;
}

} // namespace

MessageInfo::MessageInfo(QString name) : m_name(ownedString(std::move(name))) {}

MessageInfo::MessageInfo(const MessageInfo&) = default;
MessageInfo& MessageInfo::operator=(const MessageInfo&) = default;
MessageInfo::~MessageInfo() = default;

void MessageInfo::setShortDescriptiveText(QString text)
{
    m_shortDescriptiveText = ownedString(std::move(text));
}

QVariant MessageInfo::getAttribute(const QString& key) const
{
    for (const Attribute& attribute : m_attributes) {
        if (attribute.key == key) {
            return attribute.value;
        }
    }
    return QVariant();
}

const FieldInfo* MessageInfo::getFieldInfo(const QString& name) const
{
    for (const FieldInfo* field : m_fieldInfos) {
        if (field->getName() == name) {
            return field;
        }
    }
    return nullptr;
}

bool MessageInfo::isIdentifying(int fieldIndex) const
{
    return fieldIndex >= 0 && fieldIndex < m_places.size() && m_places[fieldIndex].isIdentifying;
}

void MessageInfo::setAttribute(QString key, QVariant value)
{
    for (Attribute& attribute : m_attributes) {
        if (attribute.key == key) {
            attribute.value = ownedVariant(std::move(value));
            return;
        }
    }
    m_attributes.append(Attribute{ownedString(std::move(key)), ownedVariant(std::move(value))});
}

void MessageInfo::setIsMain(bool isMain)
{
    m_isMain = isMain;
}

void MessageInfo::setFormatInfo(const FormatInfo* formatInfo)
{
    m_formatInfo = formatInfo;
}

void MessageInfo::addFieldInfo(FieldInfo* field, int order, bool isIdentifying)
{
    if (m_places.isEmpty() || m_places.constLast().order <= order) {
        m_fieldInfos.append(field);
        m_places.append(Place{order, isIdentifying});
        return;
    }
    const auto next =
        std::upper_bound(m_places.cbegin(), m_places.cend(), order,
                         [](int wanted, const Place& place) { return wanted < place.order; });
    const int place = static_cast<int>(next - m_places.cbegin());
    m_fieldInfos.insert(place, field);
    m_places.insert(place, Place{order, isIdentifying});
}

void MessageInfo::addDiscriminantValue(const FieldInfo* field, const FieldValue& value)
{
    m_discriminantValues.append(DiscriminantValue{field, value});
}
