#pragma once

#include "TQX_OwnedRecord.h"
#include "tqx_log_export.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Makes blocks of JSON Lines, see RawJson for their form.
class TQX_LOG_API LineEncoder
{
public:
    /// The block that a line stands for: its "bytes" as they are, else what its "fields" make,
    /// with Length and CRC computed. Valid until the next call. Throws LineError; of a line with
    /// scaled values ScaledLineError. Takes at most a million values in a line, far more than a
    /// block can hold.
    const std::vector<uint8_t>& encode(const std::string& line);

    /// What is doubtful about the last line that was encoded, "" when nothing is.
    const std::string& getWarning() const { return m_warning; }

private:
    void encodeFields(const Kor::MessageApi::TQX_TypeLayout& type, const nlohmann::json& values);
    void checkDecodes();

    Kor::MessageApi::TQX_OwnedRecord m_record;
    std::vector<uint8_t> m_bytes;
    std::string m_warning;
};

} // namespace tqx
