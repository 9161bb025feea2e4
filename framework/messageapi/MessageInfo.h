#pragma once

#include "FieldInfo.h"
#include "messageapi_export.h"

#include <QString>
#include <QVariant>
#include <QVector>

class FormatInfo;

/// Describes one type of message: its name, its attributes and its fields in display order.
///
/// Instances are static objects of the format's library, set up in their constructors and not
/// changed afterwards; then they may be read from any thread. The pointers that it returns are
/// not owned and live as long as that library; texts stay valid after it has been unloaded.
class MESSAGEAPI_API MessageInfo
{
public:
    struct Attribute {
        QString key;
        QVariant value;
    };

    /// Messages of this type have `value` in `field`.
    struct DiscriminantValue {
        const FieldInfo* field;
        FieldValue value;
    };

protected:
    virtual ~MessageInfo();

public:
    const QString& getName() const { return m_name; }

    /// One line on what the message is; may be empty.
    const QString& getShortDescriptiveText() const { return m_shortDescriptiveText; }
    void setShortDescriptiveText(QString text);

    /// The attribute of that name, a null QVariant if there is none.
    QVariant getAttribute(const QString& key) const;
    /// In the order in which they were first set.
    const QVector<Attribute>& getAttributes() const { return m_attributes; }

    /// False for messages that only occur inside others.
    bool isMain() const { return m_isMain; }

    /// The format that the type belongs to, null until it is set.
    const FormatInfo* getFormatInfo() const { return m_formatInfo; }

    const QVector<const FieldInfo*>& getFieldInfos() const { return m_fieldInfos; }

    /// The field of that name, or null.
    const FieldInfo* getFieldInfo(const QString& name) const;

    /// Whether the field at this place of the list distinguishes messages of the type that are
    /// about different things (antennas, satellites). False beyond the end of the list.
    bool isIdentifying(int fieldIndex) const;

    const QVector<DiscriminantValue>& getDiscriminantValues() const { return m_discriminantValues; }

protected:
    /// Literals are copied, other texts shared; this holds for all texts passed in.
    explicit MessageInfo(QString name);
    MessageInfo(const MessageInfo&);
    MessageInfo& operator=(const MessageInfo&);

    /// Replaces the value of a key that is already set.
    void setAttribute(QString key, QVariant value);
    void setIsMain(bool isMain);
    void setFormatInfo(const FormatInfo* formatInfo);
    /// `order` is the field's place in the list; fields may be added in any order.
    void addFieldInfo(FieldInfo* field, int order, bool isIdentifying);
    void addDiscriminantValue(const FieldInfo* field, const FieldValue& value);

private:
    struct Place {
        int order;
        bool isIdentifying;
    };

    QString m_name;
    QString m_shortDescriptiveText;
    QVector<Attribute> m_attributes;
    const FormatInfo* m_formatInfo = nullptr;
    QVector<const FieldInfo*> m_fieldInfos;
    QVector<Place> m_places; ///< beside m_fieldInfos
    QVector<DiscriminantValue> m_discriminantValues;
    bool m_isMain = true;
};

Q_DECLARE_TYPEINFO(MessageInfo::Attribute, Q_MOVABLE_TYPE);
Q_DECLARE_TYPEINFO(MessageInfo::DiscriminantValue, Q_PRIMITIVE_TYPE);
