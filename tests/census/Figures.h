#pragma once

#include <map>
#include <string>
#include <vector>

class FieldInfo;
class MessageInfo;

/// What the registry and the codec hold, counted: the same names as in data/census.json.
std::map<std::string, long> countedTotals();

/// How many fields carry each unit, scale factor and precision (as text), and how many fields of
/// unsigned and signed types have each width.
struct Frequencies {
    std::map<std::string, long> units;
    std::map<double, long> scales;
    std::map<int, long> precisions;
    std::map<int, long> unsignedWidths;
    std::map<int, long> signedWidths;
};
Frequencies countedFrequencies();

/// All types in registration order, main and sub-blocks together.
std::vector<const MessageInfo*> allTypes();
