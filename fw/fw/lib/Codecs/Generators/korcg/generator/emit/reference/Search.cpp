#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"

#include <fmt/format.h>

namespace korcg::generator::reference
{

// Entries are [name, page and place, kind, where it is, meaning].
std::string searchData(const Format& format, const Selection& selection)
{
    std::string text = "window.searchEntries = [\n";
    for (const RecordType* type : selection) {
        text += fmt::format(
            "[{},{},0,{},{}],\n", scriptText(type->name), scriptText(pageName(type->name)),
            scriptText(type->isMain() ? fmt::format("{}", type->number) : "sub-block"),
            scriptText(type->text));
    }
    for (const RecordType* type : selection) {
        for (const Field& field : type->fields) {
            if (field.isHeader || field.isPadding)
                continue;
            text += fmt::format("[{},{},1,{},{}],\n", scriptText(field.name),
                                scriptText(pageName(type->name) + "#" + anchorOf(field)),
                                scriptText(type->name), scriptText(field.text));
        }
    }
    for (const auto& [name, table] : format.symbols) {
        for (const SymbolicValue& value : table.values) {
            text += fmt::format("[{},{},2,{},{}],\n", scriptText(value.name),
                                scriptText(fmt::format("names.html#{}-{}", name, value.value)),
                                scriptText(name), scriptText(fmt::format("{}", value.value)));
        }
    }
    return text + "];\n";
}

std::string searchScript()
{
    return R"(const box = document.querySelector("#search input");
const list = document.querySelector("#search ol");
const kinds = ["type", "field", "value"];
const most = 60;

// The smaller, the better: the whole name, its beginning, within it, its place, its meaning.
function rank([name, , kind, where, meaning], sought) {
    const lower = name.toLowerCase();
    if (lower === sought || where === sought) return kind;
    if (lower.startsWith(sought)) return 10 + kind;
    if (lower.includes(sought)) return 20 + kind;
    if (kind < 2 && meaning.toLowerCase().includes(sought)) return 30 + kind;
    return -1;
}

function show() {
    const sought = box.value.trim().toLowerCase();
    list.replaceChildren();
    list.hidden = sought === "";
    if (list.hidden) return;
    const found = [];
    for (const entry of window.searchEntries) {
        const place = rank(entry, sought);
        if (place >= 0) found.push([place, entry]);
    }
    found.sort((a, b) => a[0] - b[0]);
    for (const [, [name, target, kind, where, meaning]] of found.slice(0, most)) {
        const link = document.createElement("a");
        link.href = target;
        const part = (tag, text) => {
            const element = document.createElement(tag);
            element.textContent = text;
            link.append(element, " ");
        };
        part("b", name);
        part("span", `${where === "sub-block" ? "" : kinds[kind]} ${where}`);
        part("small", meaning);
        const item = document.createElement("li");
        item.append(link);
        list.append(item);
    }
    if (found.length !== list.children.length || found.length === 0) {
        const item = document.createElement("li");
        item.textContent = found.length === 0 ? "nothing found"
                                              : `and ${found.length - list.children.length} more`;
        list.append(item);
    }
}

function update() {
    if (window.searchEntries) { show(); return; }
    if (document.querySelector("script[src='search-data.js']")) return;
    const script = document.createElement("script");
    script.src = "search-data.js";
    script.addEventListener("load", show);
    document.head.append(script);
}

box.addEventListener("input", update);
box.addEventListener("focus", update);
document.addEventListener("click", event => {
    if (!event.target.closest("#search")) list.hidden = true;
});
document.addEventListener("keydown", event => {
    if (event.key === "/" && event.target !== box) { event.preventDefault(); box.focus(); }
    if (event.key === "Escape") list.hidden = true;
    if (event.key === "Enter" && event.target === box) list.querySelector("a")?.click();
    const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
    if (!step || !event.target.closest("#search")) return;
    const links = [...list.querySelectorAll("a")];
    const next = links.indexOf(document.activeElement) + step;
    event.preventDefault();
    (links[next] ?? box).focus();
});
)";
}

std::string styleSheet()
{
    return R"(:root { color-scheme: light dark;
        --text: #1d2129; --soft: #626a78; --line: #dfe3ea; --back: #fff; --raised: #f4f6f9;
        --link: #1a56c4; --mark: #fff3bf; }
@media (prefers-color-scheme: dark) {
    :root { --text: #e3e6ec; --soft: #98a1b0; --line: #343a46; --back: #16191f; --raised: #20242c;
            --link: #86b0ff; --mark: #4a3f12; }
}
body { font: 15px/1.5 system-ui, sans-serif; margin: 0; color: var(--text);
       background: var(--back); }
a { color: var(--link); text-decoration: none; }
a:hover { text-decoration: underline; }
header { position: sticky; top: 0; z-index: 1; display: flex; flex-wrap: wrap; gap: .5em 2em;
         align-items: center; justify-content: space-between; padding: .6em 1.5em;
         background: var(--raised); border-bottom: 1px solid var(--line); }
nav a { margin-right: 1em; white-space: nowrap; }
main { max-width: 78em; margin: 0 auto; padding: 0 1.5em 3em; }
h1 { font-size: 1.7em; margin: .8em 0 .2em; }
h2 { font-size: 1.15em; margin: 1.6em 0 .3em; }
h2, tr { scroll-margin-top: 6.5em; }
.summary { margin: 0 0 1em; font-size: 1.05em; }
dl { display: grid; grid-template-columns: max-content auto; gap: .15em 1.5em; margin: 0 0 1.5em;
     padding: .8em 1em; background: var(--raised); border-radius: 6px; }
dt, .users, small { color: var(--soft); }
dd { margin: 0; min-width: 0; overflow-wrap: anywhere; }
code { font-size: .92em; }
table { border-collapse: collapse; width: 100%; }
table.values { width: auto; }
th, td { text-align: left; vertical-align: top; padding: .3em 1em .3em 0;
         border-bottom: 1px solid var(--line); }
.fields th { position: sticky; top: 3.3em; background: var(--back); color: var(--soft);
             font-weight: 600; }
.fields td:nth-child(-n+3), .index td:nth-child(-n+2) { white-space: nowrap; }
.fields td:first-child, .index td:first-child, .values td:first-child {
    font-variant-numeric: tabular-nums; color: var(--soft); text-align: right; }
.fields td:nth-child(2) { font-weight: 600; }
tr.part td:nth-child(2) { padding-left: 1.5em; font-weight: normal; }
tr.minor { color: var(--soft); }
tr.minor td:nth-child(2) { font-weight: normal; }
tr:target { background: var(--mark); }
.value { white-space: nowrap; }
summary { cursor: pointer; color: var(--link); }
#search { position: relative; flex: 0 1 26em; }
#search input { font: inherit; width: 100%; box-sizing: border-box; padding: .3em .6em;
                border: 1px solid var(--line); border-radius: 6px; background: var(--back);
                color: inherit; }
#search ol { position: absolute; right: 0; width: min(40em, 90vw); max-height: 70vh;
             overflow: auto; margin: .3em 0 0; padding: .3em 0; list-style: none;
             background: var(--back); border: 1px solid var(--line); border-radius: 6px;
             box-shadow: 0 6px 24px rgba(0, 0, 0, .25); }
#search li { padding: .2em .8em; color: var(--soft); }
#search li a { display: block; }
#search li a:focus { outline: none; background: var(--mark); }
#search li span { color: var(--text); }
@media (max-width: 50em) {
    h2, tr { scroll-margin-top: 9em; }
    .fields, .fields tbody { display: block; }
    .fields thead, .fields td:empty { display: none; }
    .fields td:first-child:empty { display: block; }
    .fields tr { display: grid; grid-template-columns: 2.5em 1fr max-content; gap: 0 .8em;
                 padding: .35em 0; border-bottom: 1px solid var(--line); }
    .fields td { border: 0; padding: 0; grid-column: 2 / -1; overflow-wrap: anywhere; }
    .fields td:nth-child(1) { grid-column: 1; }
    .fields td:nth-child(2) { grid-column: 2; white-space: normal; }
    .fields td:nth-child(3) { grid-column: 3; }
    .fields td[data-label]::before { content: attr(data-label) " "; color: var(--soft); }
    .index td:nth-child(-n+2) { white-space: normal; overflow-wrap: anywhere; }
}
@media print {
    :root { --text: #000; --soft: #444; --line: #bbb; --back: #fff; --raised: #fff; --link: #000; }
    body { font-size: 9pt; }
    header { display: none; }
    main { max-width: none; padding: 0; }
    .fields th { position: static; }
    h2 { break-after: avoid; }
    tr, dl { break-inside: avoid; }
    thead { display: table-header-group; }
    details::details-content { content-visibility: visible; }
    @page { size: A4 landscape; margin: 12mm; }
}
)";
}

} // namespace korcg::generator::reference
