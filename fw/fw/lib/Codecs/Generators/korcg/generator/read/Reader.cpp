#include "read/Reader.h"

#include "read/Editions.h"
#include "read/ReadFormat.h"
#include "read/ReadTypes.h"
#include "read/Resolve.h"
#include "read/YamlDocuments.h"

#include <iterator>
#include <utility>

namespace korcg::generator
{

namespace
{

void readDocuments(const Source& source, Format& format, std::vector<TypeDraft>& drafts,
                   Errors& errors)
{
    const ReadContext context{source.file, errors};
    for (const YAML::Node& document : loadDocuments(source)) {
        if (document.IsSequence()) {
            std::vector<TypeDraft> types = readTypes(context, document);
            drafts.insert(drafts.end(), std::make_move_iterator(types.begin()),
                          std::make_move_iterator(types.end()));
        } else if (document.IsMap()) {
            readFormat(context, document, format);
        } else if (!document.IsNull()) {
            context.error(document, "a document must be a list of types or a map");
        }
    }
}

} // namespace

Format readDescription(const std::vector<Source>& sources, int edition, Ledger& ledger,
                       Errors& errors)
{
    Format format;
    std::vector<TypeDraft> drafts;
    for (const Source& source : sources) {
        try {
            readDocuments(source, format, drafts, errors);
        } catch (const YAML::Exception& failure) {
            errors.add({source.file, failure.mark.line + 1}, failure.msg);
        }
    }
    if (format.name.empty()) {
        errors.add({sources.empty() ? "" : sources.front().file, 0},
                   "no file names the format ('format')");
    }
    applyEdition(drafts, format, edition, ledger, errors);
    resolve(std::move(drafts), format, errors);
    return format;
}

} // namespace korcg::generator
