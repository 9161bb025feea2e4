#pragma once

#include "model/Errors.h"
#include "model/Ledger.h"
#include "model/Model.h"
#include "read/Source.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace korcg::generator
{

/// What an added description finds: a format that it may use, but not change.
struct AddedTo {
    Format format;                            ///< units, scales and symbol tables, without types
    std::map<std::string, std::string> names; ///< of its types, by the name in upper case
    std::map<int, std::string> numbers;       ///< block numbers, with the types that have them
    /// Whether there is a formula of that name, and how many arguments it has. None: not checked.
    std::function<bool(const std::string& name, unsigned& arguments)> hasFormula;
    int firstRecord = 0;      ///< record type of the first type that is added
    Ledger* ledger = nullptr; ///< of the addition; without one, numbers follow the order
    int firstCode = 0;        ///< its first code; the others go down from there
};

/// Reads, links, numbers and checks types that others add to a format. The result has these types
/// alone and may be used only when `errors` stays empty.
Format loadAddition(const std::vector<Source>& sources, const AddedTo& base, Errors& errors);

/// Adds the types of a description of others to the format for a build: record types and codes are
/// of ranges of their own, which `ledger` keeps.
void addTypes(Format& format, const std::vector<Source>& sources, Ledger& ledger, Errors& errors);

/// The files that a path names: those of a directory, see readSources(), or one file.
std::vector<Source> readSourcesAt(const std::string& path, Errors& errors);

} // namespace korcg::generator
