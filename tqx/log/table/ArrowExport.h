#pragma once

#include "tqx/log/table/ArrowInterface.h"
#include "tqx/log/table/ColumnBuffer.h"
#include "tqx/log/table/ColumnPlan.h"
#include "tqx/log/table/NameDictionary.h"
#include "tqx/log/table/Validity.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tqx
{

using ArrowMetadata = std::vector<std::pair<std::string, std::string>>;

/// Releases a structure that has not been released.
void releaseArrow(ArrowSchema& schema);
void releaseArrow(ArrowArray& array);

/// A structure that is released at the end unless it was moved away.
template<typename Structure>
class OwnedArrow
{
public:
    OwnedArrow() = default;
    OwnedArrow(OwnedArrow&& other) noexcept : m_content(other.take()) {}
    OwnedArrow& operator=(OwnedArrow&& other) noexcept
    {
        if (this != &other) {
            releaseArrow(m_content);
            m_content = other.take();
        }
        return *this;
    }
    ~OwnedArrow() { releaseArrow(m_content); }

    Structure& get() { return m_content; }

    Structure take()
    {
        const Structure taken = m_content;
        m_content.release = nullptr;
        return taken;
    }

private:
    Structure m_content = {};
};

/// Describes a structure of columns; `out` is what it was if std::bad_alloc is thrown.
void exportSchema(const std::vector<const ColumnPlan*>& columns, const ArrowMetadata& metadata,
                  ArrowSchema& out);

/// The parts of an array.
struct ArrayParts {
    Validity validity;                 ///< with the length
    std::vector<ColumnBuffer> buffers; ///< those after the validity bits
    std::vector<OwnedArrow<ArrowArray>> children;
    std::shared_ptr<const NameDictionary> names;
};

/// Makes an array that owns its parts, to be released from any thread.
OwnedArrow<ArrowArray> exportArray(ArrayParts parts);

} // namespace tqx
