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

void readDocuments(const Source& source, bool isAddition, Format& format,
                   std::vector<TypeDraft>& drafts, Errors& errors)
{
    const ReadContext context{source.file, errors, isAddition};
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

std::vector<TypeDraft> readSourceTexts(const std::vector<Source>& sources, bool isAddition,
                                       Format& format, Errors& errors)
{
    std::vector<TypeDraft> drafts;
    for (const Source& source : sources) {
        try {
            readDocuments(source, isAddition, format, drafts, errors);
        } catch (const YAML::Exception& failure) {
            errors.add({source.file, failure.mark.line + 1}, failure.msg);
        }
    }
    return drafts;
}

void refuseEditions(const std::vector<FieldDraft>& fields, Errors& errors)
{
    for (const FieldDraft& field : fields) {
        if (field.edition)
            errors.add(field.field.where, "'edition' is for fields of the format itself");
        refuseEditions(field.bits, errors);
    }
}

} // namespace

Format readDescription(const std::vector<Source>& sources, int edition, Ledger& ledger,
                       Errors& errors)
{
    Format format;
    std::vector<TypeDraft> drafts = readSourceTexts(sources, false, format, errors);
    if (format.name.empty()) {
        errors.add({sources.empty() ? "" : sources.front().file, 0},
                   "no file tells the name of the format ('format')");
    }
    applyEdition(drafts, format, edition, ledger, errors);
    resolve(std::move(drafts), format, errors);
    return format;
}

Format readAddition(const std::vector<Source>& sources, Format format, Errors& errors)
{
    std::vector<TypeDraft> drafts = readSourceTexts(sources, true, format, errors);
    for (const TypeDraft& draft : drafts)
        refuseEditions(draft.fields, errors);
    format.types.clear();
    format.registration.clear();
    resolve(std::move(drafts), format, errors);
    for (const RecordType& type : format.types) {
        if (type.hasMessage)
            format.registration.push_back({type.name, type.where, 1});
    }
    return format;
}

} // namespace korcg::generator
