#include "read/Keys.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

namespace
{

// Keys that several kinds of maps have.
constexpr Key edition = {"edition", "2 to 254",
                         "edition of the format that brought it; without, that of what holds it"};
constexpr Key name = {"name", "text", "display name; blanks become underscores in code"};
constexpr Key text = {"text", "text", "what it means, where the name does not say it"};
constexpr Key typeText = {"text", "text", "one line on what it is"};
constexpr Key message = {"message", "true, false",
                         "whether there is a message class, true if absent"};
constexpr Key fields = {"fields", "list of fields", "in wire order, without the header"};
constexpr Key record = {"record", "number",
                        "record type; for later editions ledger.txt has it instead"};
constexpr Key role = {"role", "data, structure, reserved",
                      "what it is there for; counts, lengths and padding are structure, names that "
                      "start with Reserved are reserved, all else is data"};
constexpr Key identifies = {"identifies", "true, false",
                            "whether it distinguishes one record of the type from another"};
constexpr Key since = {"since", "1 to 7", "there in blocks of this revision and later ones"};
constexpr Key only = {"only", "0 to 7", "padding: there in blocks of this revision only"};
constexpr Key when = {"when", "{field: number}", "there when that field has that value"};
constexpr Key offset = {"offset", "bytes", "place in the block or entry, to be checked"};
constexpr Key alwaysSent = {"always_sent", "true, false",
                            "on the wire in every revision, though it has a meaning only `since`"};
constexpr Key field = {
    "field", "name",
    "in place of a name: the field in `fields`, but for the keys given here; `~` "
    "leaves a key out. With no key to give, the bare name does"};
constexpr Key differs = {"differs", "true, false",
                         "whether unit, scale or do-not-use value are others than those of the "
                         "name elsewhere"};
constexpr Key hides = {"hides", "get...", "member of Message that its getter may hide"};
constexpr Key unit = {"unit", "word", "one of the `units` of the format"};
constexpr Key scale = {"scale", "number, \"a/b\"",
                       "what the stored number is multiplied with; one of the `scales`"};
constexpr Key precision = {"precision", "0 to 20",
                           "decimals to show; 3 for floating point if absent"};
constexpr Key none = {"none", "number", "the value that means \"not available\""};
constexpr Key unnamedNone = {
    "unnamed_none", "true, false",
    "whether that value goes without the name DoNotUse, because its table of "
    "named values has another one"};
constexpr Key whole = {"whole", "true, false",
                       "whether the elements of an array of a fixed length are one value, such as "
                       "an address, which is not available when `none` is in all of them"};
constexpr Key symbols = {"symbols", "name", "table of named values"};
constexpr Key mask = {"mask", "true, false", "shown as a set of bits"};
constexpr Key isVirtual = {"virtual", "true, false",
                           "not stored as such: derived, or bits that sum up others"};
constexpr Key initial = {"initial", "number", "what init sets instead of 0"};
constexpr Key type = {"type", "u8 to u64, i8 to i32, f32, f64, char, text",
                      "type of the value or of one element"};

} // namespace

bool KeyTable::has(std::string_view key) const
{
    return std::any_of(keys.begin(), keys.end(),
                       [key](const Key& each) { return each.name == key; });
}

const KeyTable& formatKeys()
{
    static const KeyTable table = {
        "the format",
        "A document that is a map. Each key is given once in all files, but for `symbols`, "
        "`fields` and `groups`, which add up.",
        {{"format", "text", "name of the format"},
         {"units", "list of word: symbol", "units that fields may have"},
         {"scales", "list of numbers", "factors that fields may have"},
         {"registration", "list of names",
          "types with a message class, in the order of the registry; those of a later edition come "
          "after those of an earlier one"},
         {"first_edition", "map", "totals of the first edition, which are checked"},
         {"symbols", "map of tables",
          "tables of named values, each a map from value to name or a list of the maps below"},
         {"fields", "map of fields",
          "fields and sub-fields that many blocks have, by name: maps as below without a name"},
         {"groups", "map of lists of fields",
          "runs of fields that many blocks have; `- group: name` is replaced by them in a list of "
          "fields"}}};
    return table;
}

const KeyTable& firstEditionKeys()
{
    static const KeyTable table = {
        "the first edition",
        "The value of `first_edition`. What is not given is not checked.",
        {{"types", "number", "how many record types there are, numbered without a gap"},
         {"leaves", "number", "up to this record type they own no sub-block"},
         {"owners", "number", "from there to this one they own sub-blocks that own none"},
         {"overflow_after", "number", "record type after whose codes the general overflow code is"},
         {"overflow_code", "code", "that code"},
         {"first_disabled", "code", "first of the codes for types that are switched off"},
         {"codes", "number", "how many codes there are"}}};
    return table;
}

const KeyTable& blockKeys()
{
    static const KeyTable table = {
        "a block",
        "An element of a document that is a list, with the key `block`.",
        {{"block", "text", "name of the type"},
         edition,
         record,
         {"number", "1 to 8191", "block number"},
         {"generation", "1 to 255", "version of the block, 1 if absent"},
         {"flexrate", "true, false", "whether it can be output at any rate"},
         {"esoc", "true, false", "whether it can be output on change"},
         {"timestamp", "R, S, E", "receiver time, transmission time or time of an event"},
         typeText,
         message,
         {"kind", "text", "what sub-blocks that take a length from it call its kind"},
         fields}};
    return table;
}

const KeyTable& subBlockKeys()
{
    static const KeyTable table = {
        "a sub-block",
        "An element of a document that is a list, with the key `sub`.",
        {{"sub", "text", "name of the type"}, edition, record, typeText, message, fields}};
    return table;
}

const KeyTable& fieldKeys()
{
    static const KeyTable table = {
        "a field",
        "An element of `fields` of a type: a number, text or array on the wire. A field named "
        "`_padding` and "
        "a revision is padding.",
        {name,
         field,
         edition,
         {"takes", "name", "reserved bytes beside it that a later edition gives to this field"},
         text,
         role,
         identifies,
         since,
         only,
         when,
         offset,
         alwaysSent,
         type,
         {"count", "number or name", "number of elements, or the field that says it"},
         {"capacity", "number", "room in the record for what another field counts"},
         {"bytes", "name", "the field that counts, when it counts bytes and not elements"},
         {"bits", "list of sub-fields", "parts of a packed word"},
         unit,
         scale,
         precision,
         none,
         unnamedNone,
         whole,
         symbols,
         mask,
         isVirtual,
         initial,
         differs,
         hides}};
    return table;
}

const KeyTable& bitsKeys()
{
    static const KeyTable table = {
        "a sub-field",
        "An element of `bits`. One of a later edition may lie over one that is reserved.",
        {name,
         field,
         edition,
         text,
         role,
         identifies,
         {"at", "bit or [lowest, highest]", "where it is in the word"},
         {"signed", "true, false", "whether its highest bit is a sign"},
         {"any", "list of names",
          "virtual: 1 when one of these sub-fields of the word is not 0; what is in its own bits "
          "does not matter"},
         {"all", "list of names", "virtual: 1 when each of these is not 0"},
         {"neither", "list of names", "virtual: 1 when each of these is 0"},
         {"least", "list of names", "virtual: the smallest of these"},
         unit,
         scale,
         precision,
         none,
         unnamedNone,
         symbols,
         mask,
         isVirtual,
         differs,
         hides}};
    return table;
}

const KeyTable& subBlockFieldKeys()
{
    static const KeyTable table = {
        "a sub-block field",
        "An element of `fields` with the key `blocks` or `embeds`.",
        {name,
         edition,
         text,
         identifies,
         since,
         only,
         when,
         {"blocks", "name", "type of the sub-blocks of an array"},
         {"embeds", "name", "type of a single sub-block inside the record"},
         {"count", "name", "the field that says how many there are"},
         {"size", "name",
          "the field with the length of an entry; `main.` for one of the main block"},
         offset,
         alwaysSent,
         hides}};
    return table;
}

const KeyTable& derivedKeys()
{
    static const KeyTable table = {
        "a derived field",
        "An element of `fields` with the key `derived`: computed by the decoder.",
        {name,
         edition,
         text,
         role,
         identifies,
         since,
         when,
         {"derived", "name", "formula, a function of DerivedValues.h"},
         {"from", "list of names", "its inputs; `parent.` climbs to the record around"},
         {"after", "name", "field after which it is computed, the last input if absent"},
         type,
         unit,
         scale,
         precision,
         none,
         unnamedNone,
         symbols,
         mask,
         isVirtual,
         initial,
         differs,
         hides}};
    return table;
}

const KeyTable& namedValueKeys()
{
    static const KeyTable table = {"a named value",
                                   "An element of a table of `symbols` that is a list.",
                                   {{"value", "number", "the value"},
                                    {"name", "text", "its name"},
                                    {"edition", "2 to 254", "edition that brought it"}}};
    return table;
}

const KeyTable& namedRangeKeys()
{
    static const KeyTable table = {
        "a range of named values",
        "Likewise, for many values whose names hold a number.",
        {{"from", "number", "first value"},
         {"to", "number", "last value"},
         {"name", "text", "name with one %d or %02d, where the number is put"},
         {"start", "number", "number of the first name, the value if absent"},
         {"edition", "2 to 254", "edition that brought it"}}};
    return table;
}

std::string keysPage()
{
    std::string page = "# Keys of a description\n\n"
                       "Written by `korcg-generate --keys` from the tables of the reader.\n";
    for (const KeyTable* table : {&formatKeys(), &firstEditionKeys(), &blockKeys(), &subBlockKeys(),
                                  &fieldKeys(), &bitsKeys(), &subBlockFieldKeys(), &derivedKeys(),
                                  &namedValueKeys(), &namedRangeKeys()}) {
        std::string title(table->what);
        title.front() = static_cast<char>(title.front() - 'a' + 'A');
        page += fmt::format("\n## {}\n\n{}\n\n| key | value | meaning |\n|---|---|---|\n", title,
                            table->text);
        for (const Key& key : table->keys)
            page += fmt::format("| `{}` | {} | {} |\n", key.name, key.value, key.meaning);
    }
    return page;
}

} // namespace korcg::generator
