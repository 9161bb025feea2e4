#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korcg::generator
{

/// A key of a map in a description.
struct Key {
    std::string_view name;
    std::string_view value;   ///< what is written there
    std::string_view meaning; ///< one line for the page of keys
};

/// The keys of one kind of map: what the reader takes and what the page of keys lists.
struct KeyTable {
    std::string_view what; ///< "a field": how messages name the map
    std::string_view text; ///< where such a map may be
    std::vector<Key> keys;

    bool has(std::string_view key) const;
};

const KeyTable& formatKeys();
const KeyTable& firstEditionKeys();
const KeyTable& blockKeys();
const KeyTable& subBlockKeys();
const KeyTable& fieldKeys();
const KeyTable& bitsKeys();
const KeyTable& subBlockFieldKeys();
const KeyTable& derivedKeys();
const KeyTable& namedValueKeys();
const KeyTable& namedRangeKeys();

/// The page of keys in Markdown.
std::string keysPage();

} // namespace korcg::generator
