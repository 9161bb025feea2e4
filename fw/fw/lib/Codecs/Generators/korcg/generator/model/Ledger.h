#pragma once

#include "model/Errors.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korcg::generator
{

/// The numbers that editions after the first have assigned, oldest first: record types, counted up
/// from the last one of the first edition, and codes, counted down from its last. It only ever
/// grows, so what a number meant once it means in every later build.
///
/// Text, one entry per line: "<edition> type <number> <name>" or "<edition> code <number> <name>".
/// Empty lines and those that start with # are skipped.
class Ledger
{
public:
    enum Kind { Type, Code };

    /// An empty ledger, which grows.
    Ledger() = default;
    /// Reads a ledger. Lines that are none, numbers out of order, and editions that step back are
    /// errors. With `grows`, what is asked for and missing is appended, else it is an error.
    Ledger(std::string file, std::string_view text, bool grows, Errors& errors);

    /// Starts a new reading of the description, up to an edition.
    void restart(int edition);
    /// Says which number is the first of its kind.
    void startAt(Kind kind, int first) { m_firsts[kind] = first; }

    /// The number of a name; of names that an edition has several times (codes that no decoder
    /// returns may share one) the next. 0 after an error.
    int number(Kind kind, int edition, const std::string& name, const Location& where,
               Errors& errors);

    /// Reports what was missing since restart(), and the entries that were not asked for.
    void finish(Errors& errors) const;

    bool hasGrown() const { return m_hasGrown; }
    /// The text of all entries, with a head that explains them.
    std::string text() const;

private:
    struct Entry {
        Kind kind;
        int edition;
        int number;
        std::string name;
        int line;
        bool used = false;
    };

    void readLine(const std::string& line, int number, Errors& errors);
    const Entry* last(Kind kind) const;
    int next(Kind kind) const;

    std::string m_file;
    bool m_grows = true;
    bool m_hasGrown = false;
    int m_firsts[2] = {};
    int m_edition = 1;
    int m_missing = 0;
    std::pair<Location, std::string> m_firstMissing;
    std::vector<Entry> m_entries;
};

} // namespace korcg::generator
