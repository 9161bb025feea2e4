#pragma once

#include "TQX_Layout.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

class AddedTypes;

/// A text of descriptions, and the name that errors show for it.
struct DescriptionText {
    std::string file;
    std::string text; ///< YAML, UTF-8
};

/// The record types with which blocks are read and written: the built-in ones, and those of
/// descriptions read at run time.
///
///     const tqx::Schema schema = tqx::Schema::read({"more.yaml"});
///     tqx::RecordDecoder decoder(schema);
///
/// A value: copies share what was read, which never changes, and layouts live as long as one of the
/// copies. Whatever takes a schema keeps a copy. Two schemas are independent: a record type or a
/// code has a meaning in its own schema only. May be used from several threads.
class TQX_LOG_API Schema
{
public:
    /// The built-in types only.
    Schema() = default;

    /// The built-in types and those of descriptions. A path names a file, or a folder whose *.yaml
    /// files are read. Descriptions may name units, formulas and symbol tables of the format.
    /// Throws DataError, with a line "<file>:<line>: <message>" for each error.
    static Schema read(const std::vector<std::string>& paths);

    /// Likewise, from texts in memory.
    static Schema parse(const std::vector<DescriptionText>& texts);

    /// Whether there are other types than the built-in ones.
    bool hasAddedTypes() const { return m_added != nullptr; }

    /// Layout of a record type, or null.
    const Kor::MessageApi::TQX_TypeLayout* getType(uint32_t recordType) const
    {
        const Kor::MessageApi::TQX_TypeLayout* built = TQX_layout(recordType);
        return built || !m_added ? built : getAddedType(recordType);
    }

    /// Layout of the main block with that number, or null.
    const Kor::MessageApi::TQX_TypeLayout* getBlockType(uint16_t blockNumber) const
    {
        const uint32_t recordType = TQX_recordType(blockNumber);
        return recordType != 0 || !m_added ? TQX_layout(recordType)
                                           : getAddedBlockType(blockNumber);
    }

    /// Layout of the main block with that number, if it is not built in, else null.
    const Kor::MessageApi::TQX_TypeLayout* getAddedBlockType(uint16_t blockNumber) const;

    /// Layout of the type of that name, case ignored, or null.
    const Kor::MessageApi::TQX_TypeLayout* findType(std::string_view name) const;

    /// Calls `visit` with every layout, by ascending record type.
    void
    forEachType(const std::function<void(const Kor::MessageApi::TQX_TypeLayout&)>& visit) const;

    /// Name of a result of decoding or encoding, see TQX_errorName().
    const char* getErrorName(int32_t code) const;

    /// Calls `visit` with every code below zero that has a name, from -1 down.
    void forEachError(const std::function<void(int32_t code, const char* name)>& visit) const;

private:
    const Kor::MessageApi::TQX_TypeLayout* getAddedType(uint32_t recordType) const;

    std::shared_ptr<const AddedTypes> m_added;
};

} // namespace tqx
