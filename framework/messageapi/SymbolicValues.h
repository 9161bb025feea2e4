#pragma once

#include "FieldValue.h"
#include "messageapi_export.h"

#include <QString>

#include <vector>

/// A value that is shown by a name.
struct SymbolicValue {
    FieldValue value;
    QString name;

    /// Whether this is the given value, kind and width included, under the given name.
    bool is(const FieldValue& otherValue, const QString& otherName) const
    {
        return value.getKind() == otherValue.getKind() &&
               value.getWidth() == otherValue.getWidth() && value == otherValue &&
               (name.constData() == otherName.constData() || name == otherName);
    }
};

/// The named values of one field, in the order in which they were added.
///
/// Fields whose values and names begin alike share memory for them. Different objects may be used
/// from different threads.
class MESSAGEAPI_API SymbolicValues
{
public:
    SymbolicValues() = default;
    ~SymbolicValues();
    SymbolicValues(const SymbolicValues&) = delete;
    SymbolicValues& operator=(const SymbolicValues&) = delete;

    int size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    const SymbolicValue* begin() const { return m_list ? m_list->values.data() : nullptr; }
    const SymbolicValue* end() const { return begin() + m_size; }
    /// `index` is below size().
    const SymbolicValue& operator[](int index) const { return begin()[index]; }

    /// The name of the first value equal to `value`, or null. Takes one step where values run
    /// without gaps, a binary search where they ascend.
    const QString* find(const FieldValue& value) const;

    /// Invalidates iterators. A literal is copied, another text shared.
    void add(const FieldValue& value, const QString& name)
    {
        const auto place = static_cast<size_t>(m_size);
        if (!m_list || place >= m_list->values.size() || !m_list->values[place].is(value, name)) {
            extend(value, name);
        }
        ++m_size;
    }

private:
    friend class SymbolicValuePool;

    /// Changes only while one object uses it; that uses all of it, others may use its beginning.
    struct List {
        std::vector<SymbolicValue> values;
        int ascending = 0; ///< leading values that ascend
        int users = 1;     ///< guarded by the pool
    };

    void extend(const FieldValue& value, const QString& name);

    List* m_list = nullptr;
    int m_size = 0;
};

Q_DECLARE_TYPEINFO(SymbolicValue, Q_MOVABLE_TYPE);
