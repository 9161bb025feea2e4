#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace korcg::generator::reference
{

namespace
{

std::string listing(const Format& format, const Selection& types)
{
    std::string text = "<table class=\"index\">\n";
    for (const RecordType* type : types) {
        text += fmt::format("<tr><td>{}</td><td>{}</td><td>{}</td></tr>\n",
                            type->isMain() ? fmt::format("{}", type->number) : "",
                            linkTo(type->name), summary(format, *type));
    }
    return text + "</table>\n";
}

} // namespace

std::string indexByName(const Format& format, const Selection& selection)
{
    Selection types = selection;
    std::sort(types.begin(), types.end(),
              [](const RecordType* a, const RecordType* b) { return a->name < b->name; });
    return page("Blocks by name", listing(format, types));
}

std::string indexByNumber(const Format& format, const Selection& selection)
{
    Selection types;
    std::copy_if(selection.begin(), selection.end(), std::back_inserter(types),
                 [](const RecordType* type) { return type->isMain(); });
    std::sort(types.begin(), types.end(),
              [](const RecordType* a, const RecordType* b) { return a->number < b->number; });
    return page("Blocks by number", listing(format, types));
}

std::string indexByFamily(const Format& format, const Selection& selection)
{
    std::map<std::string, Selection> families;
    for (const RecordType* type : selection)
        families[familyOf(*type)].push_back(type);
    std::string contents = "<p>";
    std::string body;
    for (const auto& [name, types] : families) {
        contents += fmt::format("<a href=\"#{0}\">{0}</a> ", escaped(name));
        body += fmt::format("<h2 id=\"{0}\">{0}</h2>\n{1}", escaped(name), listing(format, types));
    }
    return page("Blocks by family", contents + "</p>\n" + body);
}

std::string framing()
{
    return page("Framing", R"(<p>A stream is a sequence of blocks. All numbers are little-endian;
offsets count bytes from the first sync character.</p>
<table>
<tr><th>Offset</th><th>Field</th><th>Type</th><th>Holds</th></tr>
<tr><td>0</td><td>Sync1</td><td>char</td><td>$</td></tr>
<tr><td>1</td><td>Sync2</td><td>char</td><td>@</td></tr>
<tr><td>2</td><td>CRC</td><td>u16</td><td>CRC-16-CCITT (polynomial 0x1021, start 0, nothing
reflected) of the bytes from offset 4 to the end of the block</td></tr>
<tr><td>4</td><td>ID</td><td>u16</td><td>bits 0-12 block number, bits 13-15 revision</td></tr>
<tr><td>6</td><td>Length</td><td>u16</td><td>bytes of the whole block</td></tr>
<tr><td>8</td><td>TOW</td><td>u32</td><td>time of week in milliseconds; not available:
4294967295</td></tr>
<tr><td>12</td><td>WNc</td><td>u16</td><td>continuous week number; not available: 65535</td></tr>
<tr><td>14</td><td></td><td></td><td>body</td></tr>
</table>
<p>An array of sub-blocks is announced by a count and by the length of one entry. An entry has
exactly that length; what a reader does not know at its end is skipped. Entries of an array inside
an entry follow it and have a length of their own, which is in the block as well.</p>
<p>A later revision adds fields after those of the earlier ones, so that a reader takes what it
knows of any revision.</p>
<h2>Result codes</h2>
<p>Decoding and encoding return the number of bits, or a negative code. Each type has the codes that its
page lists; <code>tqx error</code> names them.</p>
<table class="values">
<tr><th>Name ends in</th><th>Meaning</th></tr>
<tr><td>FIELD_EXT_BUFFER_OVERFLOW</td><td>the block, or the buffer to encode into, ends before this
field does</td></tr>
<tr><td>FIELD_INT_BUFFER_OVERFLOW</td><td>the count of the field is larger than its room in the
record</td></tr>
<tr><td>SIZE_UNDERFLOW</td><td>the fields of a sub-block take more bytes than its length says</td></tr>
<tr><td>INTERNAL</td><td>the length of a sub-block leads beyond what can be addressed</td></tr>
<tr><td>CRC_CHECKSUM</td><td>reserved: decoding does not test the checksum</td></tr>
<tr><td>DISABLED</td><td>the type is switched off in the decoder</td></tr>
<tr><td>INVALID_MESSAGE</td><td>the block number is unknown, or the block too short for one</td></tr>
</table>
)");
}

} // namespace korcg::generator::reference
