#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace korcg::generator
{

/// Where a piece of the description was written; errors name it.
struct Location {
    std::string file;
    int line = 0; ///< from 1; 0 when unknown
};

enum class Scalar { U8, I8, U16, I16, U32, I32, U64, F32, F64, Char };
enum class FieldKind {
    Value,
    Bits,
    Derived,
    Array,
    CountedArray,
    Text,
    CountedText,
    Blocks,
    Embedded
};
enum class Presence { Always, SinceRevision, OnlyRevision, Selected };
/// How a sub-field sums up others of its word.
enum class Summary { None, Any, All, Neither, Least };
enum class Role { Unset = 0, Data = 1, Structure = 2, Reserved = 3 };

using Number = std::variant<int64_t, uint64_t, double>;

struct SymbolicValue {
    int64_t value = 0;
    std::string name;
    int edition = 1; ///< that brought it
};

struct SymbolTable {
    std::string name;
    Location where;
    std::vector<SymbolicValue> values;
};

/// One field of the field list: header fields, body fields, sub-fields and derived fields alike.
/// Indices refer to RecordType::fields of the same type; -1 means none.
struct Field {
    Location where;
    std::string name; ///< display name, may contain blanks
    std::string text; ///< meaning, may be empty
    int edition = 1;  ///< that brought it
    FieldKind kind = FieldKind::Value;
    Scalar type = Scalar::U8;        ///< type of the record member (one element)
    int width = 8;                   ///< bits of one element's value
    int shift = 0;                   ///< Bits: lowest bit within the parent
    Summary summary = Summary::None; ///< Bits: computed from others of the word
    uint32_t summed = 0;             ///< ... which: bit k is the k-th row after that of the word
    bool isHeader = false;
    bool isPadding = false;

    Presence presence = Presence::Always;
    int presenceValue = 0;
    int selector = -1;
    bool alwaysSent = false;

    int elements = 1; ///< fixed number of elements, or capacity
    int parent = -1;
    int count = -1;            ///< row of the count field
    bool countsBytes = false;  ///< the count field holds bytes
    int length = -1;           ///< row of the entry length field
    bool lengthInMain = false; ///< `length` is a row of the main block that owns the owner
    std::string subType;       ///< Blocks, Embedded: name of the sub-block type

    std::string function;            ///< Derived: name of the formula
    std::vector<std::string> inputs; ///< Derived: members passed to it; "parent." climbs one link
    int after = -1;                  ///< Derived: row of the wire field that triggers it
    std::optional<double> initial;   ///< value that init sets instead of 0

    // Metadata.
    Role role = Role::Data;
    std::string unit;
    std::optional<double> scale;
    std::optional<int> precision;
    std::string symbols;            ///< name of the symbol table, or empty
    std::optional<Number> doNotUse; ///< in the field's own type
    bool doNotUseNamed = true;      ///< whether "DoNotUse" is added as a named value
    bool isWhole = false;           ///< array that lacks its value only when all elements do
    bool isOptional = false;
    bool isRepeated = false;
    bool isVirtual = false;
    bool bitMask = false;    ///< representation mode 1
    bool identifies = false; ///< flag of addFieldInfo

    std::string takes; ///< reserved field of an earlier edition whose bytes it takes, or empty
    bool isAddition =
        false; ///< on the wire in revisions that a later edition than the type's brought

    bool differs = false; ///< has another unit, scale or do-not-use value than its namesakes
    std::string hides;    ///< member of the messages' base that its getter may hide, or empty

    std::optional<int> expectedOffset; ///< wire offset that the description gives, to be checked

    // Filled by the numbering stage.
    int code = 0;         ///< EXT_BUFFER_OVERFLOW code, 0 for none
    int capacityCode = 0; ///< INT_BUFFER_OVERFLOW code, 0 when the count cannot exceed the capacity
    int wireOffset = -1;  ///< bytes from the start of the block or entry, -1 when not constant;
                          ///< sub-fields have that of their word, derived fields none

    bool onWire() const { return kind != FieldKind::Bits && kind != FieldKind::Derived; }
    /// Whether the field has codes of its own: on the wire and not a sub-block.
    bool hasCode() const
    {
        return onWire() && kind != FieldKind::Blocks && kind != FieldKind::Embedded;
    }
    bool isCounted() const
    {
        return kind == FieldKind::CountedArray || kind == FieldKind::CountedText;
    }
    bool isText() const { return kind == FieldKind::Text || kind == FieldKind::CountedText; }
    bool isArray() const
    {
        return kind == FieldKind::Array || kind == FieldKind::CountedArray || isText();
    }
};

struct RecordType {
    Location where;
    std::string name;
    std::string text; ///< short descriptive text, may be empty
    int edition = 1;  ///< that brought it
    int record = 0;   ///< record-type number; the ledger has those of later editions
    int number = 0;   ///< block number, 0 for a sub-block
    bool isMain() const { return number != 0; }
    bool hasMessage = true;
    int generation = 1;
    bool flexrate = false;
    bool esoc = false;
    char timestamp = 'R';
    std::string kindName; ///< main: X of the assertion TQX_IS_X that its sub-blocks make, or empty
    std::vector<Field> fields;
    bool broken = false; ///< errors were found in it; later stages do not look inside

    // Filled by later stages.
    int level = 0;           ///< 0 owns no sub-block, 1 owns leaves, 2 owns an owner
    int linksToMain = 0;     ///< 0 for a main block, 1 or 2 for a sub-block
    int registration = 0;    ///< position in the registry from 1, 0 without message class
    std::vector<int> owners; ///< indices into Format::types of the types that hold this one
    int highestRevision = 0; ///< highest revision that it, or a sub-block in it, distinguishes
    int ownLevel = 0;        ///< level and highest revision by the fields of its own edition: what
    int ownRevision = 0;     ///< later editions add leaves codes and padding of these as they are
    int sizeUnderflow = 0;
    int internal = 0;
    int crcChecksum = 0;
    int disabled = 0;
};

/// What the first edition is known to have. The description says it, and it is checked; what is not
/// said (0) is not checked, as in formats of tests.
struct FirstEdition {
    Location where;
    int types = 0;  ///< record types, numbered from 1 without a gap
    int leaves = 0; ///< up to this number types own no sub-block,
    int owners = 0; ///< from there to this one they own sub-blocks that own none, then others
    int overflowAfter = 0; ///< record type after whose codes the general overflow code comes
    int overflowCode = 0;
    int firstDisabled = 0; ///< code
    int codes = 0;         ///< all of them, the two at the end included
};

/// A name in the registration list.
struct RegistrationEntry {
    std::string name;
    Location where;
    int edition = 1; ///< of the type, when there is one in the whole description
};

struct Format {
    std::string name;
    int edition = 1;       ///< that it was read as
    int latestEdition = 1; ///< that the description has
    FirstEdition first;
    std::vector<RecordType> types; ///< ascending record-type number
    std::vector<RegistrationEntry> registration;
    std::map<std::string, SymbolTable> symbols;
    /// Unit vocabulary: symbols by words.
    std::map<std::string, std::string> units;
    std::vector<double> scales;              ///< allowed scale factors
    int lastFirstRecord = 0;                 ///< highest record-type number of the first edition
    int lastFirstCode = 0;                   ///< lowest code of the first edition
    int invalidMessage = 0;                  ///< code of an unknown block number
    std::vector<std::string> codeNames;      ///< name of code -1 first, then downward
    int firstAddedCode = 0;                  ///< of types that others added to the build
    std::vector<std::string> addedCodeNames; ///< likewise, from that code downward

    const RecordType* find(const std::string& typeName) const
    {
        for (const RecordType& type : types) {
            if (type.name == typeName)
                return &type;
        }
        return nullptr;
    }
};

} // namespace korcg::generator
