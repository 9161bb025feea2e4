#pragma once

#include "TQX_OwnedRecord.h"
#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// Encodes JSON Lines as blocks, see RawJson for their form.
///
///     LineEncoder encoder;
///     while (std::getline(input, line))
///         use(encoder.encode(line));
///
/// Used by one thread at a time; several threads use one each.
class TQX_LOG_API LineEncoder
{
public:
    /// Encodes blocks of the schema's types. Throws std::bad_alloc.
    explicit LineEncoder(const Schema& schema = {});
    ~LineEncoder();
    LineEncoder(const LineEncoder&) = delete;
    LineEncoder& operator=(const LineEncoder&) = delete;

    /// The block that a line describes: its "bytes" unchanged, else one made from its "fields",
    /// with Length and CRC computed. Valid until the next call. Throws LineError (ScaledLineError
    /// for a line with scaled values) and std::bad_alloc; the next line can be encoded after that.
    /// Accepts at most a million values in a line, far more than a block can hold, and lines of
    /// less than 4 GiB.
    const std::vector<uint8_t>& encode(std::string_view line);

    /// A warning about the last line that was encoded, "" for none.
    const std::string& getWarning() const { return m_warning; }

private:
    struct Tools;

    const Kor::MessageApi::TQX_TypeLayout& typeOf(std::string_view name);
    void checkDecodes(const Kor::MessageApi::TQX_TypeLayout& type);

    Schema m_schema;
    std::unique_ptr<Tools> m_tools;
    Kor::MessageApi::TQX_OwnedRecord m_record;
    std::vector<uint8_t> m_room; ///< for the largest block
    std::vector<uint8_t> m_bytes;
    std::string m_warning;
};

} // namespace tqx
