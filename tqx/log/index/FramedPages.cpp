#include "tqx/log/index/FramedPages.h"

#include "TQX_Context.h"

#include <algorithm>
#include <tuple>

namespace tqx
{

namespace
{

auto fieldsOf(const PageRow& row)
{
    return std::tie(row.entry, row.blocks, row.firstTowAt, row.firstTow, row.lastTow, row.minTime,
                    row.maxTime, row.lastTime, row.timeBefore, row.towBefore, row.weekBefore,
                    row.startsWeek);
}

} // namespace

bool operator==(const PageRow& left, const PageRow& right)
{
    return fieldsOf(left) == fieldsOf(right);
}

uint64_t FramedPages::entryOf(uint32_t page) const
{
    return page == getEndPage() ? exit : startOf(page) + rowOf(page).entry;
}

PageOffsets& FramedPages::offsetsOf(uint16_t number)
{
    const auto found = std::find_if(types.begin(), types.end(),
                                    [&](const Type& type) { return type.number == number; });
    if (found != types.end())
        return found->offsets;
    types.push_back({number, {}});
    return types.back().offsets;
}

void FramedPages::append(const FramedPages& later, uint32_t page)
{
    const auto firstKept = static_cast<std::ptrdiff_t>(page - later.firstPage);
    if (later.getEndPage() == page)
        return;
    rows.insert(rows.end(), later.rows.begin() + firstKept, later.rows.end());
    for (const Type& type : later.types) {
        if (type.offsets.getLastPage() >= page)
            offsetsOf(type.number).append(type.offsets, page);
    }
    for (size_t i = 0; i < marks.size(); ++i)
        marks[i].append(later.marks[i], page);
    exit = later.exit;
}

void FramedPages::truncate(uint32_t page)
{
    if (page >= getEndPage())
        return;
    exit = entryOf(page);
    rows.resize(page - firstPage);
    for (Type& type : types)
        type.offsets.truncate(page);
    types.erase(std::remove_if(types.begin(), types.end(),
                               [](const Type& type) { return type.offsets.isEmpty(); }),
                types.end());
    for (PageOffsets& mark : marks)
        mark.truncate(page);
}

void FramedPages::linkRows()
{
    PageOffsets::Cursor weeks(marks[WeekStart]);
    GnssMillis time = noMillis;
    uint32_t tow = 0;
    uint8_t week = 0;
    for (uint32_t page = 0; page < rows.size(); ++page) {
        PageRow& row = rows[page];
        row.timeBefore = time;
        row.towBefore = tow;
        row.weekBefore = week;
        row.startsWeek =
            row.firstTow != noTow && Kor::MessageApi::TQX_beginsWeek(row.firstTow, tow);
        week = static_cast<uint8_t>(week + weeks.at(page).size() + (row.startsWeek ? 1 : 0));
        if (row.lastTow != noTow)
            tow = row.lastTow;
        if (row.lastTime != noMillis)
            time = row.lastTime;
    }
}

} // namespace tqx
