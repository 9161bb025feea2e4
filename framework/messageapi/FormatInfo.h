#pragma once

#include "MessageInfo.h"
#include "messageapi_export.h"

#include <QMetaType>
#include <QString>
#include <QVector>

/// Describes one message format: its name and its types of messages.
///
/// A format enters itself in a process-wide list when constructed, or when the set-up that it is
/// part of ends, and leaves it when destroyed; copies are not entered. The types are not owned:
/// they may be gone before the format is.
class MESSAGEAPI_API FormatInfo
{
protected:
    virtual ~FormatInfo();

public:
    const QString& getName() const { return m_name; }

    /// In the order in which they were added.
    const QVector<const MessageInfo*>& getMessageInfos() const { return m_messageInfos; }
    const QVector<const MessageInfo*>& getSubMessageInfos() const { return m_subMessageInfos; }

    /// Main and sub types together, likewise.
    const QVector<const MessageInfo*>& getAllMessageInfos() const { return m_allMessageInfos; }

    /// The type of that name, main or sub, or null.
    const MessageInfo* getMessageInfo(const QString& name) const;

    /// All formats, oldest first. May be called from any thread.
    static QVector<const FormatInfo*> getFormats();

    /// The oldest format of that name, or null. May be called from any thread.
    static const FormatInfo* getFormat(const QString& name);

protected:
    /// A literal is copied, another text shared.
    explicit FormatInfo(QString name);
    FormatInfo(const FormatInfo&);
    FormatInfo& operator=(const FormatInfo&);

    void addMessageInfo(const MessageInfo* info);
    void addSubMessageInfo(const MessageInfo* info);

    /// Withholds the formats that this thread constructs from the list until the outermost SetUp of
    /// the thread ends, so that no other thread finds a format whose types are still being added.
    class MESSAGEAPI_API SetUp
    {
    public:
        SetUp();
        ~SetUp();
        SetUp(const SetUp&) = delete;
        SetUp& operator=(const SetUp&) = delete;

    private:
        friend class FormatInfo;
        const bool m_isOutermost;
        QVector<const FormatInfo*> m_withheld;
    };

private:
    /// Of this thread, or null.
    static SetUp*& outermostSetUp();

    QString m_name;
    QVector<const MessageInfo*> m_messageInfos;
    QVector<const MessageInfo*> m_subMessageInfos;
    QVector<const MessageInfo*> m_allMessageInfos;
};

Q_DECLARE_METATYPE(const FormatInfo*)
