#pragma once

#include "ReferenceCountedObject.h"
#include "messageapi_export.h"

#include <QString>
#include <QVector>

class MessageInfo;

/// One decoded message, or a message inside another one. What it holds is read through the
/// FieldInfos of its MessageInfo, or through the accessors of its own class.
///
/// Take a reference to keep a message beyond the notification that brought it. A sub-message is
/// owned by its parent and lives no longer than it.
class MESSAGEAPI_API Message : public ReferenceCountedObject
{
public:
    ~Message() override;

    /// The messages directly inside this one, owned by it; none by default. Messages of different
    /// fields follow each other in field order.
    virtual QVector<Message*> getSubMessages();
    virtual QVector<const Message*> getSubMessages() const;

    /// One line of text of the fields whose place in the MessageInfo's list is set in `fieldMask`,
    /// with fieldSeparator between them. A mask shorter than the list leaves the rest out.
    virtual QString getRawStringFor(const QVector<bool>& fieldMask) const = 0;

private:
    virtual const void* getRawRepresentation() const = 0;

public:
    /// What describes messages of this type; never null for a message of a working format.
    const MessageInfo* getInfo() const { return m_info; }

    /// The message that this one is inside of, or null.
    Message* getParentMessage() { return m_parent; }
    const Message* getParentMessage() const { return m_parent; }

    /// Put between fields by getRawStringFor: a tab, which no number and no ordinary text holds.
    static QString fieldSeparator;
    /// Shown for a value that means "not available": "DoNotUse".
    static QString doNotUseString;
    /// Whether it is shown; on at start. Otherwise raw strings hold the number and displays
    /// nothing.
    static bool useDoNotUseString;

protected:
    /// `info` is not owned and outlives the message.
    explicit Message(const MessageInfo* info) : m_info(info) {}
    /// A copy has the same parent and its own reference count.
    Message(const Message&) = default;
    Message& operator=(const Message&) = default;

    /// Only recorded; the parent is not notified.
    void setParentMessage(Message* parent) { m_parent = parent; }

    /// The record of another message; null when it has none or `message` is null.
    const void* getRawRepresentationOf(const Message* message) const;

private:
    const MessageInfo* m_info;
    Message* m_parent = nullptr;
};
