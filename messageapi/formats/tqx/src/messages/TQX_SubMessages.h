#pragma once

#include "Message.h"

#include <QHash>
#include <QVector>

#include <utility>

// The cache of child messages in a message with sub-blocks. Children are distinguished by the
// record that they read, so a message whose record is refilled in place keeps its children.

/// Rebuilds the children of the sub-block arrays of one message. Takes all children out of `owned`
/// when it is made, puts those that still fit and new ones back as arrays are built, and
/// deletes in its destructor those that are no longer used.
///
/// `RecordOf` gives the record of a child: const void* (const Message*).
template<typename RecordOf>
class TQX_SubMessageBuilder
{
public:
    /// `record` is the record of `parent`, which gets the children.
    TQX_SubMessageBuilder(QVector<Message*>& owned, void* record, Message* parent,
                          RecordOf recordOf)
        : m_owned(owned), m_old(std::exchange(owned, {})), m_record(record), m_parent(parent),
          m_recordOf(recordOf)
    {
    }
    ~TQX_SubMessageBuilder() { qDeleteAll(m_old); }

    TQX_SubMessageBuilder(const TQX_SubMessageBuilder&) = delete;
    TQX_SubMessageBuilder& operator=(const TQX_SubMessageBuilder&) = delete;

    /// Puts one child per element of `array` into `typed` and into the owned list, and points the
    /// elements to their parent record. A null array counts as empty.
    template<typename Child, typename Record>
    void build(Record* array, unsigned int count, QVector<Child*>& typed)
    {
        typed.clear();
        if (!array)
            return;
        typed.reserve(static_cast<int>(count));
        m_owned.reserve(m_owned.size() + static_cast<int>(count));
        for (unsigned int i = 0; i < count; ++i) {
            Record* element = array + i;
            element->korcg_father = m_record;
            auto* child = takeOld<Child>(element);
            if (!child)
                child = new Child(element, m_parent, false);
            m_owned.append(child);
            typed.append(child);
        }
    }

private:
    /// Takes the old child of the given class that reads `element`; null when there is none.
    template<typename Child>
    Child* takeOld(const void* element)
    {
        const int place = findOld(element);
        auto* child = place < 0 ? nullptr : dynamic_cast<Child*>(m_old[place]);
        if (child)
            m_old[place] = nullptr;
        return child;
    }

    /// Place of the old child that reads `element`, or -1. Old children mostly come in the order of
    /// the elements; from the first one on that does not, they are looked up by their record.
    int findOld(const void* element)
    {
        if (m_index.isEmpty() && m_next < m_old.size()) {
            if (m_recordOf(m_old[m_next]) == element)
                return m_next++;
            for (int i = m_next; i < m_old.size(); ++i)
                m_index.insert(m_recordOf(m_old[i]), i);
        }
        return m_index.value(element, -1);
    }

    QVector<Message*>& m_owned;
    QVector<Message*> m_old;
    QHash<const void*, int> m_index; ///< of m_old from m_next on, empty until it is needed
    int m_next = 0;
    void* m_record;
    Message* m_parent;
    RecordOf m_recordOf;
};

/// The child of an embedded sub-block: kept when it reads `element` already, replaced when it does
/// not, deleted when `element` is null, which says that the sub-block is absent. Points the element
/// to `record`, the record that it is part of.
template<typename Child, typename Record, typename RecordOf>
void TQX_ensureChild(Child*& child, Record* element, void* record, Message* parent,
                     RecordOf recordOf)
{
    if (element)
        element->korcg_father = record;
    if (element && child && recordOf(child) == element)
        return;
    delete std::exchange(child, nullptr);
    if (element)
        child = new Child(element, parent, false);
}

/// Deletes the children of all arrays. The typed lists keep stale pointers until they are rebuilt.
inline void TQX_disposeChildren(QVector<Message*>& owned)
{
    qDeleteAll(std::exchange(owned, {}));
}

/// Deletes the child of an embedded sub-block.
template<typename Child>
void TQX_disposeChild(Child*& child)
{
    delete std::exchange(child, nullptr);
}

template<typename Target, typename Child>
void TQX_collectInto(QVector<Target>& children, const QVector<Child*>& list)
{
    for (Child* child : list)
        children.append(child);
}

template<typename Target, typename Child>
void TQX_collectInto(QVector<Target>& children, Child* child)
{
    if (child)
        children.append(child);
}

/// The children in the given typed lists and embedded children, without null pointers.
template<typename Target, typename... Children>
QVector<Target> TQX_collectChildren(const Children&... children)
{
    QVector<Target> all;
    (TQX_collectInto(all, children), ...);
    return all;
}
