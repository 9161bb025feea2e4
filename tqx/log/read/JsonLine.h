#pragma once

#include "tqx/log/read/JsonValue.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// Parses lines of JSON one by one, without copying each value.
class TQX_LOG_API JsonLine
{
public:
    JsonLine();
    ~JsonLine();
    JsonLine(const JsonLine&) = delete;
    JsonLine& operator=(const JsonLine&) = delete;

    /// The value that a line holds, of any depth. Valid until the next call. All members of the
    /// same name are kept. Throws LineError for invalid JSON, for numbers beyond the largest
    /// double, and for more than a million values in a line of more than 1 MiB.
    const JsonValue& parse(std::string_view line);

private:
    struct Parser;

    bool parseFast(std::string_view line);

    std::string m_text; ///< the line, in which strings lose their escapes
    std::vector<JsonValue> m_values;
    std::unique_ptr<Parser> m_parser;
};

} // namespace tqx
