#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

namespace korcg::generator
{

void emitReference(const Format& format, const Selection& selection, Output& output)
{
    constexpr const char all[] = "the whole description";
    output.write("reference.css", all, reference::styleSheet());
    output.write("search.js", all, reference::searchScript());
    output.write("search-data.js", all, reference::searchData(format, selection));
    output.write("index.html", all, reference::indexByName(format, selection));
    output.write("numbers.html", all, reference::indexByNumber(format, selection));
    output.write("families.html", all, reference::indexByFamily(format, selection));
    output.write("names.html", all, reference::namedValues(format, selection));
    output.write("framing.html", all, reference::framing());
    for (const RecordType* type : selection) {
        output.write(reference::pageName(type->name), sourceOf(*type),
                     reference::typePage(format, *type));
    }
}

} // namespace korcg::generator
