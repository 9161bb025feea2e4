#pragma once

#include "TQX_DescribedType.h"
#include "TQX_Layout.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// A described type, with the memory that its layout refers to.
struct AddedType {
    Kor::MessageApi::TQX_TypeLayout layout = {};
    Kor::MessageApi::TQX_DescribedType described = {};
    std::vector<Kor::MessageApi::TQX_FieldLayout> fields;
    std::vector<Kor::MessageApi::TQX_DescribedFacts> facts;
    std::vector<Kor::MessageApi::TQX_Derivation> derivations;
    std::vector<Kor::MessageApi::TQX_StartingValue> starts;
    std::deque<std::vector<Kor::MessageApi::TQX_FieldInput>> inputs;
};

/// What descriptions added to the built-in types. Never changes once made.
class AddedTypes
{
public:
    std::vector<std::unique_ptr<AddedType>> types;                     ///< by record type
    std::vector<const Kor::MessageApi::TQX_TypeLayout*> layouts;       ///< theirs
    std::map<uint16_t, const Kor::MessageApi::TQX_TypeLayout*> blocks; ///< by block number
    std::vector<std::string> codeNames; ///< from TQX_firstDescribedCode down
    std::deque<std::string> texts;      ///< that layouts and facts point to
    std::map<std::string, std::vector<Kor::MessageApi::TQX_NamedValue>> tables;
};

} // namespace tqx
