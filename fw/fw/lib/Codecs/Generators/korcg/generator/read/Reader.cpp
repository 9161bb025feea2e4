#include "read/Reader.h"

#include "read/Dictionary.h"
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

/// The documents of all sources. Those that are no YAML are reported and left out.
std::vector<Definition> loadAll(const std::vector<Source>& sources, const Dictionary& dictionary,
                                bool isAddition, Errors& errors)
{
    std::vector<Definition> documents;
    for (const Source& source : sources) {
        try {
            const ReadContext context{source.file, errors, &dictionary, isAddition};
            for (const YAML::Node& document : loadDocuments(source))
                documents.push_back({context, document});
        } catch (const YAML::Exception& failure) {
            errors.add({source.file, failure.mark.line + 1}, failure.msg);
        }
    }
    return documents;
}

void readDocuments(const std::vector<Definition>& documents, Format& format,
                   std::vector<TypeDraft>& drafts)
{
    for (const auto& [context, document] : documents) {
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
    Dictionary dictionary; // complete before the first type is read
    const std::vector<Definition> documents = loadAll(sources, dictionary, isAddition, errors);
    for (const auto& [context, document] : documents) {
        if (document.IsMap())
            readDictionary(context, document, dictionary);
    }
    readDocuments(documents, format, drafts);
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
                   "no file names the format ('format')");
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
