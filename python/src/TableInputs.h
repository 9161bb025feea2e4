#pragma once

#include "LogFile.h"
#include "PartStream.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/table/IndexInput.h"
#include "tqx/log/table/TableInput.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx::python
{

/// Counts of reading a table so far.
struct TableCounts {
    uint64_t bytes = 0;       ///< of the content of logs so far
    uint64_t found = 0;       ///< blocks of the type in the time and of the revisions
    uint64_t selected = 0;    ///< of these, that meet the condition: that columns were filled from
    uint64_t refused = 0;     ///< of these, that did not decode
    std::string firstRefused; ///< "<file>: <offset>: <reason>" of the first one
};

/// Selects blocks of a table's type.
struct BlockChoice {
    std::optional<GnssMillis> from;
    std::optional<GnssMillis> to;           ///< the first time that is not wanted
    uint8_t revisions = 0xff;               ///< a bit for each
    std::shared_ptr<const Condition> where; ///< may be null
};

/// The selected blocks of a table from several consecutive logs. Counts them, and can be
/// interrupted.
class ChosenInput : public TableInput
{
public:
    ChosenInput(std::vector<std::unique_ptr<TableInput>> inputs, BlockChoice choice,
                const Schema& schema, std::shared_ptr<TableCounts> counts);

    size_t read(TableBlock* blocks, size_t capacity) override;
    void refuse(const TableBlock& block, int32_t code) override;

private:
    bool isWanted(const TableBlock& block);

    std::vector<std::unique_ptr<TableInput>> m_inputs;
    size_t m_current = 0;
    BlockChoice m_choice;
    std::shared_ptr<TableCounts> m_counts;
    Schema m_schema;
    RecordDecoder m_decoder;
    uint64_t m_sinceCheck = 0;
};

/// The blocks of a whole log by its index, which the input keeps alive.
class WholeInput : public TableInput
{
public:
    WholeInput(std::shared_ptr<const LogFile> log, const Kor::MessageApi::TQX_TypeLayout& type,
               const BlockChoice& choice);

    size_t read(TableBlock* blocks, size_t capacity) override;

private:
    std::shared_ptr<const LogFile> m_log;
    IndexInput m_input;
};

/// The blocks of a part of a log without an index, exactly as in one pass over all of it.
class PartInput : public TableInput
{
public:
    /// See PartStream. Throws SourceError.
    PartInput(const std::vector<std::string>& paths, const Partition& part, const Schema& schema,
              const Kor::MessageApi::TQX_TypeLayout& type, const BlockChoice& choice);

    size_t read(TableBlock* blocks, size_t capacity) override;

private:
    PartStream m_stream;
    uint16_t m_number;
    std::optional<GnssMillis> m_time;
    std::optional<GnssMillis> m_from;
    std::optional<GnssMillis> m_to;
};

} // namespace tqx::python
