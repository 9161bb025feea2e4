#include "SymbolicValues.h"

#include "OwnedString.h"

#include <QHash>

#include <algorithm>
#include <mutex>
#include <unordered_map>

namespace
{

bool beginsWith(const std::vector<SymbolicValue>& values, const std::vector<SymbolicValue>& first,
                size_t count)
{
    return std::equal(
        first.begin(), first.begin() + static_cast<std::ptrdiff_t>(count), values.begin(),
        [](const SymbolicValue& a, const SymbolicValue& b) { return a.is(b.value, b.name); });
}

} // namespace

/// All lists in use, found by their beginnings. Lives as long as the process: fields of other
/// libraries release theirs during static destruction.
class SymbolicValuePool
{
public:
    using List = SymbolicValues::List;

    static SymbolicValuePool& instance()
    {
        static auto* const pool = new SymbolicValuePool;
        return *pool;
    }

    /// A list that holds the first `count` values of `list` and then the given one. Takes over the
    /// use of `list`, which may be null.
    List* extend(List* list, size_t count, const FieldValue& value, const QString& name)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        const size_t key = list ? keyOf(list->values.front().name) : keyOf(name);
        if (List* known = find(key, list, count, value, name)) {
            ++known->users;
            release(list);
            return known;
        }
        List* extended = list;
        if (!list || list->users > 1) {
            extended = list ? new List(*list) : new List;
            extended->users = 1;
            release(list);
            m_lists.emplace(key, extended);
        }
        auto& values = extended->values;
        values.resize(count);
        extended->ascending = std::min(extended->ascending, static_cast<int>(count));
        if (extended->ascending == static_cast<int>(count) &&
            (count == 0 || values.back().value < value)) {
            ++extended->ascending;
        }
        values.push_back(SymbolicValue{value, ownedString(name)});
        return extended;
    }

    void giveBack(List* list)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        release(list);
    }

private:
    static size_t keyOf(const QString& firstName) { return qHash(firstName); }

    List* find(size_t key, const List* list, size_t count, const FieldValue& value,
               const QString& name) const
    {
        const auto range = m_lists.equal_range(key);
        const auto found = std::find_if(range.first, range.second, [&](const auto& entry) {
            const auto& values = entry.second->values;
            return values.size() > count && values[count].is(value, name) &&
                   (!list || beginsWith(values, list->values, count));
        });
        return found == range.second ? nullptr : found->second;
    }

    void release(List* list)
    {
        if (!list || --list->users > 0) {
            return;
        }
        const auto range = m_lists.equal_range(keyOf(list->values.front().name));
        m_lists.erase(std::find_if(range.first, range.second,
                                   [list](const auto& entry) { return entry.second == list; }));
        delete list;
    }

    std::mutex m_mutex;
    std::unordered_multimap<size_t, List*> m_lists;
};

SymbolicValues::~SymbolicValues()
{
    if (m_list) {
        SymbolicValuePool::instance().giveBack(m_list);
    }
}

void SymbolicValues::extend(const FieldValue& value, const QString& name)
{
    m_list = SymbolicValuePool::instance().extend(m_list, static_cast<size_t>(m_size), value, name);
}

const QString* SymbolicValues::find(const FieldValue& value) const
{
    if (isEmpty()) {
        return nullptr;
    }
    const SymbolicValue* first = begin();
    const int ascending = std::min(m_list->ascending, m_size);
    if (value.getKind() == FieldKind::U && first->value.getKind() == FieldKind::U) {
        const uint64_t place = value.getU64() - first->value.getU64();
        if (place < static_cast<uint64_t>(ascending) &&
            first[static_cast<size_t>(place)].value == value) {
            return &first[static_cast<size_t>(place)].name;
        }
    }
    const SymbolicValue* ascendingEnd = first + ascending;
    const auto found = std::lower_bound(first, ascendingEnd, value,
                                        [](const SymbolicValue& symbol, const FieldValue& wanted) {
                                            return symbol.value < wanted;
                                        });
    if (found != ascendingEnd && found->value == value) {
        return &found->name;
    }
    const auto other = std::find_if(ascendingEnd, end(), [&value](const SymbolicValue& symbol) {
        return symbol.value == value;
    });
    return other == end() ? nullptr : &other->name;
}
