#include "tqx/log/record/TypeNames.h"

#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <numeric>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

char lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// Edit distance: insertions, deletions and replacements of characters from one name to the other.
size_t distance(std::string_view a, std::string_view b)
{
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (const char letter : a) {
        size_t diagonal = row[0]++;
        for (size_t k = 0; k < b.size(); ++k) {
            const size_t replaced = diagonal + (lower(letter) == lower(b[k]) ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

} // namespace

bool equalNames(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

bool equalFields(std::string_view name, std::string_view written)
{
    return std::equal(name.begin(), name.end(), written.begin(), written.end(), [](char x, char y) {
        return lower(x) == lower(y) || (x == ' ' && y == '_');
    });
}

void forEachType(const std::function<void(const TQX_TypeLayout&)>& visit)
{
    Schema().forEachType(visit);
}

void forEachField(const TQX_TypeLayout& type, const std::function<void(const std::string&)>& visit)
{
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        visit(field.name);
        if (field.recordType != 0) {
            forEachField(*field.sub, [&](const std::string& inner) {
                visit(std::string(field.name) + '.' + inner);
            });
        }
    }
}

const TQX_TypeLayout* findType(std::string_view name)
{
    return Schema().findType(name);
}

std::string nearest(std::string_view name, const std::vector<std::string_view>& candidates)
{
    constexpr size_t longest = 128; // longer than any name
    if (name.size() > longest)
        return "";
    std::string_view best;
    size_t least = name.size() / 3 + 1;
    for (const std::string_view candidate : candidates) {
        const size_t excess =
            std::max(name.size(), candidate.size()) - std::min(name.size(), candidate.size());
        if (excess >= least)
            continue;
        const size_t apart = distance(name, candidate);
        if (apart < least) {
            least = apart;
            best = candidate;
        }
    }
    return std::string(best);
}

std::string unknownName(std::string_view kind, std::string_view name,
                        const std::vector<std::string_view>& candidates)
{
    const std::string meant = nearest(name, candidates);
    std::string text = fmt::format("there is no {} named {}", kind, shortened(name));
    if (!meant.empty())
        text += fmt::format(", did you mean {}?", meant);
    return text;
}

std::string unknownType(std::string_view name, const Schema& schema)
{
    std::vector<std::string_view> names;
    schema.forEachType([&](const TQX_TypeLayout& layout) { names.emplace_back(layout.name); });
    return unknownName("type", name, names);
}

} // namespace tqx
