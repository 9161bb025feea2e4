#pragma once

#include "model/Model.h"

#include <optional>
#include <string>
#include <vector>

namespace korcg::generator
{

/// A name that a field mentions, with the place where it does.
struct Mention {
    std::string name;
    Location where;
    explicit operator bool() const { return !name.empty(); }
};

/// A field as it is written: other fields are still named, not resolved to rows.
struct FieldDraft {
    Field field;
    std::optional<int> edition; ///< as written; without, that of the word or type around it
    Mention count;
    Mention size;
    bool sizeInMain = false;
    Mention selector;
    Mention after;
    Mention takes;
    bool roleGiven = false;
    bool virtualGiven = false;
    std::vector<FieldDraft> bits; ///< sub-fields in bit order
};

/// A record type as it is written, without header fields.
struct TypeDraft {
    RecordType type;
    std::vector<FieldDraft> fields;
};

} // namespace korcg::generator
