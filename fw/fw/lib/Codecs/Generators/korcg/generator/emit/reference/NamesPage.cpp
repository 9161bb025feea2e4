#include "emit/reference/Html.h"
#include "emit/reference/Pages.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <map>

namespace korcg::generator::reference
{

namespace
{

// More users than these are hardly read: "yes" and "no" have hundreds.
constexpr std::size_t mostUsers = 30;

std::map<std::string, std::vector<std::string>> linksOfUsers(const Selection& selection)
{
    std::map<std::string, std::vector<std::string>> users;
    for (const RecordType* type : selection) {
        for (const Field& field : type->fields) {
            if (field.symbols.empty())
                continue;
            users[field.symbols].push_back(
                fmt::format("<a href=\"{}#{}\">{}&thinsp;:&thinsp;{}</a>", pageName(type->name),
                            anchorOf(field), escaped(type->name), escaped(field.name)));
        }
    }
    return users;
}

std::string usersText(const std::vector<std::string>& links)
{
    if (links.size() > mostUsers)
        return fmt::format("Used by {} fields", links.size());
    std::string text;
    for (const std::string& link : links)
        text += (text.empty() ? "Used by " : ", ") + link;
    return text;
}

} // namespace

std::string namedValues(const Format& format, const Selection& selection)
{
    std::map<std::string, std::vector<std::string>> users = linksOfUsers(selection);
    std::string body;
    for (const auto& [name, table] : format.symbols) {
        body += fmt::format("<h2 id=\"{0}\">{0}</h2>\n<p class=\"users\">{1}</p>\n"
                            "<table class=\"values\">\n",
                            escaped(name), usersText(users[name]));
        for (const SymbolicValue& value : table.values) {
            body += fmt::format("<tr id=\"{}-{}\"><td>{}</td><td>{}</td></tr>\n", escaped(name),
                                value.value, value.value, escaped(value.name));
        }
        body += "</table>\n";
    }
    return page("Named values", body);
}

} // namespace korcg::generator::reference
