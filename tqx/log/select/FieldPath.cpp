#include "tqx/log/select/FieldPath.h"

#include "tqx/log/record/TypeNames.h"

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

class Search
{
public:
    Search(const std::vector<ExpressionWord>& wanted, UnknownField& miss)
        : m_names(wanted), m_unknown(miss)
    {
    }

    /// The field of that name in the type, or else all of that name in its sub-blocks.
    void findAtAnyDepth(const TQX_TypeLayout& type, size_t at)
    {
        if (!findIn(type, at))
            forEachSubBlock(type, [&](const TQX_TypeLayout& inner) { findBelow(inner, at); });
    }

    std::vector<FieldPath> found;

private:
    template<typename Action>
    void forEachSubBlock(const TQX_TypeLayout& type, const Action& action)
    {
        for (int i = type.firstSubBlock; i < type.fieldCount; ++i) {
            if (type.fields[i].recordType == 0)
                continue;
            m_through.push_back({&type, type.fields + i});
            action(*type.fields[i].sub);
            m_through.pop_back();
        }
    }

    void findBelow(const TQX_TypeLayout& type, size_t at)
    {
        findIn(type, at);
        forEachSubBlock(type, [&](const TQX_TypeLayout& inner) { findBelow(inner, at); });
    }

    bool findIn(const TQX_TypeLayout& type, size_t at)
    {
        for (int i = 0; i < type.fieldCount; ++i) {
            if (equalFields(type.fields[i].name, m_names[at].text)) {
                take({&type, type.fields + i}, at);
                return true;
            }
        }
        note(type, at);
        return false;
    }

    void take(const FieldOfType& field, size_t at)
    {
        if (at + 1 == m_names.size()) {
            found.push_back({m_through, field});
        } else if (field.layout->recordType != 0) {
            m_through.push_back(field);
            findIn(*field.layout->sub, at + 1);
            m_through.pop_back();
        } else if (at + 1 > m_unknown.depth) {
            m_unknown = {at + 1, {}};
        }
    }

    void note(const TQX_TypeLayout& type, size_t at)
    {
        if (at < m_unknown.depth)
            return;
        if (at > m_unknown.depth)
            m_unknown = {at, {}};
        for (int i = 0; i < type.fieldCount; ++i)
            m_unknown.candidates.insert(type.fields[i].name);
    }

    const std::vector<ExpressionWord>& m_names;
    UnknownField& m_unknown;
    std::vector<FieldOfType> m_through;
};

} // namespace

std::vector<FieldPath> findFields(const TQX_TypeLayout& type,
                                  const std::vector<ExpressionWord>& names, size_t first,
                                  UnknownField& unknown)
{
    Search search(names, unknown);
    search.findAtAnyDepth(type, first);
    return search.found;
}

} // namespace tqx
