#pragma once

#include "tqx/log/record/RecordPlan.h"
#include "tqx/log/table/Gather.h"
#include "tqx/log/table/NameDictionary.h"
#include "tqx/log/table/TableOptions.h"
#include "tqx/log/value/Scale.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tqx
{

/// Where a number is, and which of its values means "not available".
struct NumberSource {
    enum class Form : uint8_t { Unsigned, Signed, Real };

    NumberPlace place;
    Form form = Form::Unsigned;
    uint32_t size = 1; ///< of the value in bytes
    bool hasDoNotUse = false;
    bool isWhole = false;  ///< an array has it in all elements or in none, see isWholeValue()
    uint64_t doNotUse = 0; ///< of an integer, in two's complement
    double realDoNotUse = 0;
};

/// A number that a derived value is computed from.
struct DerivedInput {
    unsigned links; ///< parent links from the record of the derived value to that of the input
    NumberSource source;
};

/// A column: its Arrow type, and where its values are.
struct ColumnPlan {
    enum class Kind : uint8_t {
        Number,
        Text,
        File,      ///< name of a file, by its number
        List,      ///< counted numbers
        FixedList, ///< a fixed number of numbers
        Struct,    ///< an embedded sub-block
        Blocks,    ///< a list of sub-blocks
    };

    Kind kind = Kind::Number;
    std::string name;
    std::string format; ///< of the Arrow C data interface
    std::vector<std::pair<std::string, std::string>> metadata;
    bool isNullable = true;

    /// The field, and the type that it belongs to; null for columns about the block.
    const Kor::MessageApi::TQX_TypeLayout* type = nullptr;
    const Kor::MessageApi::TQX_FieldLayout* field = nullptr;

    NumberSource source;     ///< of a number, in the record
    NumberPlace placeOnWire; ///< of a number, in the block
    std::optional<Scale> scale;
    std::shared_ptr<const NameDictionary> names;
    std::vector<DerivedInput> inputs; ///< what must be available for the value to be available

    uint32_t wireStride = 0; ///< of a fixed list: bytes from element to element in the block

    std::vector<ColumnPlan> children; ///< the item of a list, the fields of sub-blocks
};

/// Makes the columns of a plan's members.
class ColumnPlanner
{
public:
    explicit ColumnPlanner(const TableOptions& chosen) : m_options(chosen) {}

    /// `towcOnWire` is where blocks that are read without decoding have their TOWc.
    std::vector<ColumnPlan> columnsOf(const RecordPlan& plan, uint32_t towcOnWire = 0);

private:
    ColumnPlan columnOf(const RecordPlan& plan, const RecordPlan::Member& member,
                        const RecordPlan::Part& part);
    void planNumber(ColumnPlan& column, const RecordPlan::Part& part);
    std::shared_ptr<const NameDictionary> namesOf(const RecordPlan::Part& part);

    const TableOptions& m_options;
    /// Keyed by the table of names, the width and, if it has a name, the code that means "not
    /// available".
    std::map<std::array<uint64_t, 3>, std::shared_ptr<const NameDictionary>> m_dictionaries;
};

} // namespace tqx
