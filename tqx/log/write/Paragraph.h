#pragma once

#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/stream/Block.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

struct ParagraphPlan;

/// Writes blocks as paragraphs for people: a line with what the block is, its time and its
/// offset, then a line for each field, bit ranges below their word and sub-blocks below their
/// field, each a step further in. Texts are those of the metadata in the C locale; the values come
/// straight from the records.
///
/// Used by one thread at a time. Throws std::bad_alloc when there is no memory to append to.
class TQX_LOG_API Paragraph
{
public:
    /// With `isUtc` the time in the first line is in UTC, otherwise in GPS time. The filter must
    /// outlive this object.
    explicit Paragraph(const FieldFilter& filter, const ValueStyle& style = {}, bool isUtc = false);
    ~Paragraph();
    Paragraph(const Paragraph&) = delete;
    Paragraph& operator=(const Paragraph&) = delete;

    /// Appends the paragraph of a block that was decoded to `record`. Fields of the block's header
    /// are in the first line only, unless the filter names them; a type without a message class has
    /// only the first line. Appends nothing when the filter shows no field of the type.
    void write(Buffer& out, const Block& block, const void* record);

    /// Appends only the first line, for a block without anything else to show. Appends nothing when
    /// there is a filter.
    void writeTitle(Buffer& out, const Block& block);

private:
    ParagraphPlan& planOf(uint32_t recordType);
    void appendTitle(Buffer& out, std::string_view what, const Block& block);

    const FieldFilter& m_filter;
    ValueStyle m_style;
    bool m_isUtc;
    std::vector<std::unique_ptr<ParagraphPlan>> m_plans; ///< by record type
    std::optional<GnssMillis> m_lastTime;                ///< the blocks of an epoch share it
    std::string m_lastTimeText;
};

} // namespace tqx
