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

std::string listing(const Selection& types)
{
    std::string text = "<table class=\"index\">\n";
    for (const RecordType* type : types) {
        text += fmt::format("<tr><td>{}</td><td>{}</td><td>{}</td></tr>\n",
                            type->isMain() ? fmt::format("{}", type->number) : "sub",
                            linkTo(type->name), escaped(type->text));
    }
    return text + "</table>\n";
}

// Hides the rows that do not contain what is typed; without a script the list is simply whole.
constexpr const char searchBox[] =
    R"(<p><input type="search" placeholder="Search" aria-label="Search" oninput="
const sought = this.value.toLowerCase();
for (const row of document.querySelectorAll('.index tr'))
    row.hidden = !row.textContent.toLowerCase().includes(sought);"></p>
)";

} // namespace

std::string indexByName(const Selection& selection)
{
    Selection types = selection;
    std::sort(types.begin(), types.end(),
              [](const RecordType* a, const RecordType* b) { return a->name < b->name; });
    return page("Blocks by name", searchBox + listing(types));
}

std::string indexByNumber(const Selection& selection)
{
    Selection types;
    std::copy_if(selection.begin(), selection.end(), std::back_inserter(types),
                 [](const RecordType* type) { return type->isMain(); });
    std::sort(types.begin(), types.end(),
              [](const RecordType* a, const RecordType* b) { return a->number < b->number; });
    return page("Blocks by number", searchBox + listing(types));
}

std::string indexByFamily(const Selection& selection)
{
    std::map<std::string, Selection> families;
    for (const RecordType* type : selection)
        families[sourceOf(*type)].push_back(type);
    std::string body = searchBox;
    for (const auto& [file, types] : families) {
        std::string name = file.substr(0, file.rfind('.'));
        std::replace(name.begin(), name.end(), '_', ' ');
        body += fmt::format("<h2>{}</h2>\n{}", escaped(name), listing(types));
    }
    return page("Blocks by family", body);
}

std::string namedValues(const Format& format)
{
    std::string body;
    for (const auto& [name, table] : format.symbols) {
        body += fmt::format("<h2 id=\"{0}\">{0}</h2>\n<p>", escaped(name));
        std::string_view comma;
        for (const SymbolicValue& value : table.values) {
            body += fmt::format("{}{}&nbsp;{}", comma, value.value, escaped(value.name));
            comma = ", ";
        }
        body += "</p>\n";
    }
    return page("Named values", body);
}

std::string framing()
{
    return page("Framing", R"(<p>A stream is a sequence of blocks. All numbers are little-endian;
offsets count bytes from the first sync character.</p>
<table>
<tr><th>Offset</th><th>Field</th><th>Type</th><th></th></tr>
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
an entry follow behind it and have a length of their own, which stands in the block as well.</p>
<p>A later revision adds fields behind those of the earlier ones, so that a reader takes what it
knows of any revision.</p>
)");
}

std::string styleSheet()
{
    return R"(:root { color-scheme: light dark; }
body { font: 15px/1.45 system-ui, sans-serif; margin: 1.5em auto; max-width: 75em; padding: 0 1em; }
nav a { margin-right: 1em; }
h1 { font-size: 1.5em; margin: .6em 0 .3em; }
h2 { font-size: 1.1em; margin: 1.2em 0 .3em; }
dl { display: grid; grid-template-columns: max-content auto; gap: .1em 1em; }
dt { opacity: .7; }
dd { margin: 0; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: .2em .8em .2em 0;
         border-bottom: 1px solid rgba(128, 128, 128, .3); }
td:first-child, td:nth-child(3) { white-space: nowrap; }
tr.part td:nth-child(2) { padding-left: 1.5em; }
input { font: inherit; width: 20em; }
@media print { nav, input { display: none; } }
)";
}

} // namespace korcg::generator::reference
