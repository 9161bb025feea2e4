#include "model/Ledger.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace korcg::generator
{

namespace
{

constexpr std::string_view kindNames[] = {"type", "code"};
constexpr int steps[] = {1, -1};

constexpr std::string_view head =
    "# Record types and codes of the editions after the first, in the order in which they were\n"
    "# assigned. `korcg-generate --update-ledger` appends to it; nothing is ever changed or\n"
    "# removed, because logs and programs in the field rely on these numbers.\n"
    "# edition, kind, number, name\n";

} // namespace

Ledger::Ledger(std::string file, std::string_view text, bool grows, Errors& errors)
    : m_file(std::move(file)), m_grows(grows)
{
    std::istringstream lines{std::string(text)};
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.front() != '#')
            readLine(line, number, errors);
    }
}

void Ledger::readLine(const std::string& line, int number, Errors& errors)
{
    const auto error = [&](const std::string& text) { errors.add({m_file, number}, text); };
    std::istringstream words(line);
    Entry entry{Type, 0, 0, {}, number};
    std::string kind;
    std::string rest;
    const bool isComplete =
        words >> entry.edition >> kind >> entry.number >> entry.name && !(words >> rest);
    const auto* found = std::find(std::begin(kindNames), std::end(kindNames), kind);
    if (!isComplete || found == std::end(kindNames) || entry.edition < 2) {
        error(fmt::format("'{}' is not an entry: edition, type or code, number, name", line));
        return;
    }
    entry.kind = found == std::begin(kindNames) ? Type : Code;
    const Entry* before = last(entry.kind);
    if (before != nullptr && entry.edition < before->edition) {
        error(fmt::format("{} is of edition {}, but edition {} has begun before it", entry.name,
                          entry.edition, before->edition));
    }
    if (before != nullptr && entry.number != before->number + steps[entry.kind]) {
        error(fmt::format("{} has the number {}, expected {}", entry.name, entry.number,
                          before->number + steps[entry.kind]));
    }
    m_entries.push_back(std::move(entry));
}

void Ledger::restart(int edition)
{
    m_edition = edition;
    m_missing = 0;
    for (Entry& entry : m_entries)
        entry.used = false;
}

const Ledger::Entry* Ledger::last(Kind kind) const
{
    const auto found = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                    [kind](const Entry& entry) { return entry.kind == kind; });
    return found == m_entries.rend() ? nullptr : &*found;
}

int Ledger::next(Kind kind) const
{
    const Entry* before = last(kind);
    return before == nullptr ? m_firsts[kind] : before->number + steps[kind];
}

int Ledger::number(Kind kind, int edition, const std::string& name, const Location& where,
                   Errors& errors)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry& entry) {
        return entry.kind == kind && !entry.used && entry.name == name;
    });
    if (found != m_entries.end()) {
        found->used = true;
        if (found->edition != edition) {
            errors.add(where, fmt::format("{} is of edition {}, but of edition {} in {}:{}", name,
                                          edition, found->edition, m_file, found->line));
        }
        return found->number;
    }
    if (!m_grows) {
        if (m_missing++ == 0)
            m_firstMissing = {where, name};
        return 0;
    }
    if (const Entry* before = last(kind); before != nullptr && before->edition > edition) {
        errors.add(where, fmt::format("{} cannot join edition {}: edition {} has begun", name,
                                      edition, before->edition));
    }
    m_entries.push_back({kind, edition, next(kind), name, 0, true});
    m_hasGrown = true;
    return m_entries.back().number;
}

void Ledger::finish(Errors& errors) const
{
    if (m_missing != 0) {
        errors.add(
            m_firstMissing.first,
            fmt::format("{}{} not in the ledger yet; --update-ledger adds what is missing",
                        m_firstMissing.second,
                        m_missing == 1 ? " is" : fmt::format(" and {} more are", m_missing - 1)));
    }
    bool isFirst[2] = {true, true};
    for (const Entry& entry : m_entries) {
        if (std::exchange(isFirst[entry.kind], false) && entry.number != m_firsts[entry.kind]) {
            errors.add({m_file, entry.line},
                       fmt::format("{} has the number {}, expected {}", entry.name, entry.number,
                                   m_firsts[entry.kind]));
        }
        if (!entry.used && entry.edition <= m_edition) {
            errors.add({m_file, entry.line}, fmt::format("{} {} is no longer in the description",
                                                         kindNames[entry.kind], entry.name));
        }
    }
}

std::string Ledger::text() const
{
    std::string lines(head);
    for (const Entry& entry : m_entries) {
        lines += fmt::format("{} {} {} {}\n", entry.edition, kindNames[entry.kind], entry.number,
                             entry.name);
    }
    return lines;
}

} // namespace korcg::generator
