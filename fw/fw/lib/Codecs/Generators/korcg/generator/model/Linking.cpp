#include "model/Numbering.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace korcg::generator
{

namespace
{

class Linker
{
public:
    Linker(Format& format, Errors& errors) : m_format(format), m_errors(errors)
    {
        for (std::size_t i = 0; i < format.types.size(); ++i)
            m_index.emplace(format.types[i].name, i);
    }

    void run()
    {
        findOwners();
        m_levels.assign(m_format.types.size(), unknown);
        for (std::size_t i = 0; i < m_format.types.size(); ++i)
            visit(i);
        for (std::size_t i = 0; i < m_format.types.size(); ++i)
            m_format.types[i].level = m_levels[i];
        findLinks();
        findRegistration();
    }

private:
    static constexpr int unknown = -1;
    static constexpr int visiting = -2;

    void findOwners()
    {
        for (std::size_t i = 0; i < m_format.types.size(); ++i) {
            for (const Field& field : m_format.types[i].fields) {
                const auto found = m_index.find(field.subType);
                if (field.subType.empty() || found == m_index.end())
                    continue;
                std::vector<int>& owners = m_format.types[found->second].owners;
                const int owner = static_cast<int>(i);
                if (std::find(owners.begin(), owners.end(), owner) == owners.end())
                    owners.push_back(owner);
            }
        }
    }

    /// Level and highest revision, those of the held types first. The depth of the recursion is
    /// bounded by the number of types, because no type is entered twice.
    void visit(std::size_t index)
    {
        if (m_levels[index] != unknown)
            return;
        m_levels[index] = visiting;
        RecordType& type = m_format.types[index];
        int level = 0;
        for (const Field& field : type.fields) {
            const bool isOwn = field.edition <= type.edition;
            const auto revise = [&](int revision, int ownRevision) {
                type.highestRevision = std::max(type.highestRevision, revision);
                if (isOwn)
                    type.ownRevision = std::max(type.ownRevision, ownRevision);
            };
            if (field.presence == Presence::SinceRevision ||
                field.presence == Presence::OnlyRevision)
                revise(field.presenceValue, field.presenceValue);
            const auto found = m_index.find(field.subType);
            if (field.subType.empty() || found == m_index.end())
                continue;
            visit(found->second);
            if (m_levels[found->second] == visiting) {
                m_errors.add(field.where, fmt::format("{} holds itself", type.name));
                continue;
            }
            level = std::max(level, m_levels[found->second] + 1);
            const RecordType& sub = m_format.types[found->second];
            if (isOwn)
                type.ownLevel = std::max(type.ownLevel, sub.ownLevel + 1);
            revise(sub.highestRevision, sub.ownRevision);
        }
        m_levels[index] = level;
    }

    /// Depth by depth from the main blocks down.
    void findLinks()
    {
        std::set<int> above;
        for (std::size_t i = 0; i < m_format.types.size(); ++i) {
            if (m_format.types[i].isMain())
                above.insert(static_cast<int>(i));
        }
        for (int depth = 1; depth <= deepest && !above.empty(); ++depth) {
            std::set<int> here;
            for (std::size_t i = 0; i < m_format.types.size(); ++i) {
                RecordType& type = m_format.types[i];
                if (type.isMain() || !isHeldBy(type, above))
                    continue;
                here.insert(static_cast<int>(i));
                if (type.linksToMain != 0 && type.linksToMain != depth) {
                    m_errors.add(type.where,
                                 fmt::format("{} is held at different depths", type.name));
                }
                type.linksToMain = depth;
            }
            above = here;
        }
    }

    static bool isHeldBy(const RecordType& type, const std::set<int>& owners)
    {
        return std::any_of(type.owners.begin(), type.owners.end(),
                           [&owners](int owner) { return owners.count(owner) != 0; });
    }

    void findRegistration()
    {
        int position = 0;
        for (const RegistrationEntry& entry : m_format.registration) {
            ++position;
            const auto found = m_index.find(entry.name);
            if (found != m_index.end() && m_format.types[found->second].registration == 0)
                m_format.types[found->second].registration = position;
        }
    }

    static constexpr int deepest = 3;

    Format& m_format;
    Errors& m_errors;
    std::map<std::string, std::size_t> m_index;
    std::vector<int> m_levels;
};

} // namespace

void link(Format& format, Errors& errors)
{
    Linker(format, errors).run();
}

} // namespace korcg::generator
