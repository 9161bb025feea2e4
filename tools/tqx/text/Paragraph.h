#pragma once

#include "BlockStream.h"
#include "Buffer.h"
#include "FieldFilter.h"

#include <map>
#include <memory>

class Message;
class MessageInfo;

namespace tool
{

struct ParagraphPlan;

/// Writes messages as paragraphs for people: a line with what the block is, when and where it
/// stands, then a line a field, bit ranges below their word and sub-blocks below their field, each
/// a step further in.
class Paragraph
{
public:
    /// How values are shown.
    enum class Values {
        Scaled, ///< with unit, scale and names
        Stored, ///< the numbers as they stand in the block
    };

    Paragraph(const FieldFilter& filter, Values values);
    ~Paragraph();
    Paragraph(const Paragraph&) = delete;
    Paragraph& operator=(const Paragraph&) = delete;

    /// Appends the paragraph of a message. Fields of the block's header are in the first line
    /// only, unless the filter names them. Nothing when the filter shows no field of its type.
    void write(Buffer& out, const Block& block, const Message& message);

    /// Appends the first line alone, for a block that there is no message of. Nothing when there
    /// is a filter.
    void writeTitle(Buffer& out, const Block& block) const;

private:
    const FieldFilter& filter;
    Values values;
    std::map<const MessageInfo*, std::unique_ptr<ParagraphPlan>> plans;
};

} // namespace tool
