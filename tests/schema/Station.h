#pragma once

#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/schema/Schema.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqx::testing
{

/// The types of station.yaml.
const Schema& station();

/// A schema of one text in a file "more.yaml".
Schema schemaOf(const std::string& text);

/// The block of a line of stored values.
std::vector<uint8_t> encoded(const Schema& schema, std::string_view line);

Block blockOf(const std::vector<uint8_t>& bytes);

/// The line of stored values of a block, or of scaled ones, without its head; "" when it does not
/// decode.
std::string storedLine(const Schema& schema, const std::vector<uint8_t>& bytes);
std::string scaledLine(const Schema& schema, const std::vector<uint8_t>& bytes,
                       const std::vector<std::string>& fields = {});

/// Lines of stored values that have all that station.yaml describes.
extern const std::vector<std::string> stationLines;

} // namespace tqx::testing
