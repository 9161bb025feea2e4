#pragma once

#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Several contents concatenated, so that a block may begin in one and end in the next. As
/// thread-safe as its parts.
class TQX_LOG_API JoinedAccess : public RandomAccess
{
public:
    /// The parts are not owned and must outlive the object. `label` names the whole in messages.
    explicit JoinedAccess(const std::vector<const RandomAccess*>& parts,
                          std::string label = "several files");

    const std::string& getName() const override { return m_name; }
    uint64_t getSize() const override { return m_size; }

    /// Throws what the failing part throws.
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override;

    /// Where a byte comes from: the name of a part, which lives as long as the part, and the offset
    /// in it. Only for offsets below getSize().
    struct Place {
        const std::string& file;
        uint64_t offset;
    };
    Place placeOf(uint64_t offset) const;

private:
    struct Part {
        const RandomAccess* access;
        uint64_t start;
    };

    std::vector<Part>::const_iterator partAt(uint64_t offset) const;

    std::vector<Part> m_joined; ///< those that are not empty
    std::string m_name;
    uint64_t m_size = 0;
};

} // namespace tqx
