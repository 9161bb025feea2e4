#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx/log/select/FieldTest.h"
#include "tqx/log/select/TypeSelection.h"
#include "tqx_log_export.h"

#include <bitset>
#include <string>
#include <unordered_map>
#include <vector>

namespace tqx
{

/// An expression whose names are resolved: what messages it holds for.
///
/// A field stands for the values that the message has of it: one, or all elements of an array and
/// of all sub-blocks. A comparison holds when it holds for at least one that is available, in the
/// unit and with the names that the description gives; so it does not hold for messages without the
/// field. `has` asks whether there is an available value.
class TQX_LOG_API Condition
{
public:
    /// Resolves names among the main types that `types` accepts. Throws DataError for an
    /// expression that cannot be read, names that do not exist, and comparisons that a field does
    /// not have.
    Condition(const std::string& text, const TypeSelection& types);

    /// Whether any of the fields belongs to that type. If not, accepts() says the same for all its
    /// blocks, and for null.
    bool reads(uint16_t blockNumber) const { return readTypes[blockNumber]; }

    /// Whether the condition holds for the record of a main block. Null stands for a block that has
    /// none of the fields.
    bool accepts(const void* record) const;

private:
    /// The tests that each term comes down to for one type.
    using Tests = std::vector<std::vector<FieldTest>>;

    void resolve(size_t termIndex, const TypeSelection& types);
    bool holds(size_t node, const Tests& tests, const void* record) const;

    Expression expression;
    std::unordered_map<uint32_t, Tests> testsOfTypes; ///< by record type
    Tests noTests;
    std::bitset<TypeSelection::numbers> readTypes;
};

} // namespace tqx
