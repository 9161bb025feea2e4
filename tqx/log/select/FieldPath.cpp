#include "tqx/log/select/FieldPath.h"

#include "tqx/log/record/TypeNames.h"

#include "TQX_FieldInfo.h"

#include "MessageInfo.h"

namespace tqx
{

namespace
{

class Search
{
public:
    Search(const std::vector<ExpressionWord>& wanted, UnknownField& miss)
        : names(wanted), unknown(miss)
    {
    }

    /// The field of that name in the type, or else all of that name in its sub-blocks.
    void findAtAnyDepth(const MessageInfo& type, size_t at)
    {
        if (!findIn(type, at))
            forEachSubBlock(type, [&](const MessageInfo& inner) { findBelow(inner, at); });
    }

    std::vector<FieldPath> found;

private:
    static const char* nameOf(const FieldInfo* info)
    {
        return static_cast<const TQX_FieldInfo*>(info)->layout().name;
    }

    template<typename Action>
    void forEachSubBlock(const MessageInfo& type, const Action& action)
    {
        for (const FieldInfo* info : type.getFieldInfos()) {
            if (const MessageInfo* inner = info->getType().getSubMessageInfo()) {
                through.push_back(info);
                action(*inner);
                through.pop_back();
            }
        }
    }

    void findBelow(const MessageInfo& type, size_t at)
    {
        findIn(type, at);
        forEachSubBlock(type, [&](const MessageInfo& inner) { findBelow(inner, at); });
    }

    bool findIn(const MessageInfo& type, size_t at)
    {
        for (const FieldInfo* info : type.getFieldInfos()) {
            if (equalFields(nameOf(info), names[at].text)) {
                take(*info, at);
                return true;
            }
        }
        note(type, at);
        return false;
    }

    void take(const FieldInfo& info, size_t at)
    {
        if (at + 1 == names.size()) {
            found.push_back({through, &info});
        } else if (const MessageInfo* inner = info.getType().getSubMessageInfo()) {
            through.push_back(&info);
            findIn(*inner, at + 1);
            through.pop_back();
        } else if (at + 1 > unknown.depth) {
            unknown = {at + 1, {}};
        }
    }

    void note(const MessageInfo& type, size_t at)
    {
        if (at < unknown.depth)
            return;
        if (at > unknown.depth)
            unknown = {at, {}};
        for (const FieldInfo* info : type.getFieldInfos())
            unknown.candidates.insert(nameOf(info));
    }

    const std::vector<ExpressionWord>& names;
    UnknownField& unknown;
    std::vector<const FieldInfo*> through;
};

} // namespace

std::vector<FieldPath> findFields(const MessageInfo& type, const std::vector<ExpressionWord>& names,
                                  size_t first, UnknownField& unknown)
{
    Search search(names, unknown);
    search.findAtAnyDepth(type, first);
    return search.found;
}

} // namespace tqx
