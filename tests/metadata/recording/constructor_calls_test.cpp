#include "TQX_AGCState_FieldInfos.h"
#include "TQX_AGCState_MessageInfo.h"
#include "TQX_PVTGeodetic2_FieldInfos.h"
#include "TQX_PVTGeodetic2_MessageInfo.h"
#include "TQX_TypeRows.h"

#include "Journal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

using Lines = std::vector<std::string>;

/// Position of a field in the list of a type.
unsigned indexOf(uint32_t recordType, const std::string& name)
{
    const TQX_TypeLayout& type = *TQX_layout(recordType);
    const auto found =
        std::find_if(type.fields, type.fields + type.fieldCount,
                     [&name](const TQX_FieldLayout& field) { return field.name == name; });
    EXPECT_NE(found, type.fields + type.fieldCount) << name;
    return static_cast<unsigned>(found - type.fields);
}

/// A field like `index` of a type, with properties of its own.
class MadeUpField : public TQX_FieldInfo
{
public:
    MadeUpField(const TQX_TypeRow& type, const TQX_FieldFacts* facts, unsigned index)
        : TQX_FieldInfo(type, facts, index)
    {
    }
    ~MadeUpField() override = default;
};

Lines buildAndDestroy(uint32_t recordType, unsigned index, const TQX_FieldFacts& facts)
{
    std::vector<TQX_FieldRow> rows(index + 1);
    rows[index].className = "MadeUp";
    std::vector<TQX_FieldFacts> factRows(index + 1);
    factRows[index] = facts;
    TQX_TypeRow type{};
    type.fields = rows.data();
    type.recordType = static_cast<uint16_t>(recordType);
    MadeUpField(type, factRows.data(), index);
    return Journal::take();
}

/// The first scale, in the order of the types, that is `scale`.
uint16_t scaleIndex(double scale)
{
    for (uint32_t recordType = 1; const TQX_TypeLayout* type = TQX_layout(recordType);
         ++recordType) {
        for (int i = 0; i < type->fieldCount; ++i) {
            if (const TQX_FieldFacts& facts = TQX_fieldFacts(recordType)[i];
                TQX_scale(facts) == scale)
                return facts.scale;
        }
    }
    ADD_FAILURE() << "no field has the scale " << scale;
    return 0;
}

/// The calls of the first access to a type, which builds all of it.
template<typename Info>
const Lines& journalOf()
{
    static const Lines journal = [] {
        Journal::take();
        Info::getInstance();
        return Journal::take();
    }();
    return journal;
}

TEST(ConstructorCalls, SubBlock)
{
    const Lines expected = {
        "MessageInfo AGCState",
        "allocateObject TQX_AGCState_MessageInfo",
        "setIsMain false",
        "getInstance",
        "setFormatInfo",
        "FieldInfo FrontEndID u8",
        "allocateObject TQX_AGCState_FrontEndID_FieldInfo",
        "getInstance",
        "FieldInfo FrontEnd Code u5",
        "allocateObject TQX_AGCState_FrontEnd_Code_FieldInfo",
        "getInstance",
        "setRole 1",
        "addSymbolicValue 0:u5 GPSL1/E1",
        "addSymbolicValue 1:u5 GLOL1",
        "addSymbolicValue 2:u5 E6",
        "addSymbolicValue 3:u5 GPSL2",
        "addSymbolicValue 4:u5 GLOL2",
        "addSymbolicValue 5:u5 L5/E5a/B2a",
        "addSymbolicValue 6:u5 E5b/B2b",
        "addSymbolicValue 7:u5 E5(a+b)",
        "addSymbolicValue 8:u5 GPSL1/GLOL1/E1",
        "addSymbolicValue 9:u5 GPSL2/GLOL2",
        "addSymbolicValue 10:u5 MSS/L-band",
        "addSymbolicValue 11:u5 B1",
        "addSymbolicValue 12:u5 B3",
        "addSymbolicValue 13:u5 S-band",
        "addSymbolicValue 14:u5 B3-E6",
        "addSubFieldInfo FrontEnd Code",
        "FieldInfo AntennaID u3",
        "allocateObject TQX_AGCState_AntennaID_FieldInfo",
        "getInstance",
        "setRole 1",
        "addSymbolicValue 0:u3 Main",
        "addSymbolicValue 1:u3 Aux1",
        "addSymbolicValue 2:u3 Aux2",
        "addSubFieldInfo AntennaID",
        "setRole 1",
        "addFieldInfo FrontEndID 0 true",
        "addFieldInfo FrontEnd Code 1 false",
        "addFieldInfo AntennaID 2 false",
        "FieldInfo Gain i8",
        "allocateObject TQX_AGCState_Gain_FieldInfo",
        "getInstance",
        "setRole 1",
        "setUnit decibel",
        "addSymbolicValue -128:i8 DoNotUse",
        "setDoNotUseValue -128:i8",
        "addFieldInfo Gain 3 false",
        "FieldInfo SampleVar u8",
        "allocateObject TQX_AGCState_SampleVar_FieldInfo",
        "getInstance",
        "setRole 1",
        "addSymbolicValue 0:u8 DoNotUse",
        "setDoNotUseValue 0:u8",
        "addFieldInfo SampleVar 4 false",
        "FieldInfo BlankingStat u8",
        "allocateObject TQX_AGCState_BlankingStat_FieldInfo",
        "getInstance",
        "setRole 1",
        "setUnit percent",
        "addFieldInfo BlankingStat 5 false",
    };
    EXPECT_EQ(journalOf<TQX_AGCState_MessageInfo>(), expected);
    TQX_AGCState_Gain_FieldInfo::getInstance();
    EXPECT_EQ(Journal::take(), Lines{}) << "built a second time";
}

TEST(ConstructorCalls, MainBlock)
{
    const Lines& journal = journalOf<TQX_PVTGeodetic2_MessageInfo>();
    const Lines start = {
        "MessageInfo PVTGeodetic2",
        "allocateObject TQX_PVTGeodetic2_MessageInfo",
        "setShortDescriptiveText GNSS position, velocity, and time in geodetic coordinates",
        "getInstance",
        "setFormatInfo",
        "FieldInfo Sync1 ch",
        "allocateObject TQX_PVTGeodetic2_Sync1_FieldInfo",
        "getInstance",
        "setRole 2",
        "addFieldInfo Sync1 0 false",
    };
    const Lines end = {
        "addDiscriminantValue BlockNumber 4007:u13",
        "setAttribute flexrate bool true",
        "setAttribute esoc bool true",
        "setAttribute timestamp int 82",
        "setAttribute version int 2",
        "setAttribute blocknr int 4007",
    };
    ASSERT_GT(journal.size(), start.size() + end.size());
    const auto fromEnd = static_cast<Lines::difference_type>(end.size());
    const auto fromStart = static_cast<Lines::difference_type>(start.size());
    EXPECT_EQ(Lines(journal.begin(), journal.begin() + fromStart), start);
    EXPECT_EQ(Lines(journal.end() - fromEnd, journal.end()), end);
}

TEST(ConstructorCalls, EveryPropertyInOrderAndDestruction)
{
    journalOf<TQX_AGCState_MessageInfo>();
    const unsigned gain = indexOf(TQX_TypeRows::AGCState.recordType, "Gain");
    const TQX_FieldFacts* known = TQX_fieldFacts(TQX_TypeRows::AGCState.recordType);
    TQX_FieldFacts facts = known[gain];
    facts.namedValues = known[2].namedValues;
    facts.scale = scaleIndex(0.5);
    facts.precision = 2;
    facts.role = TQX_Role::Reserved;
    facts.flags = TQX_FieldFacts::Optional | TQX_FieldFacts::Repeated | TQX_FieldFacts::Virtual |
                  TQX_FieldFacts::BitMask | TQX_FieldFacts::HasDoNotUse |
                  TQX_FieldFacts::NamesDoNotUse;
    const Lines expected = {
        "FieldInfo Gain i8",
        "allocateObject MadeUp",
        "getInstance",
        "setIsOptional true",
        "setIsRepeated true",
        "setVirtual true",
        "setRole 3",
        "setUnit decibel",
        "setScaleFactor 0.5",
        "addSymbolicValue 0:i8 Main",
        "addSymbolicValue 1:i8 Aux1",
        "addSymbolicValue 2:i8 Aux2",
        "addSymbolicValue -128:i8 DoNotUse",
        "setDoNotUseValue -128:i8",
        "setPrecision 2",
        "setRepresentationMode 1",
        "deallocateObject MadeUp",
        "~FieldInfo Gain",
    };
    EXPECT_EQ(buildAndDestroy(TQX_TypeRows::AGCState.recordType, gain, facts), expected);
}

} // namespace
