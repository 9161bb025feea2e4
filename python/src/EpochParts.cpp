#include "EpochParts.h"

#include <algorithm>

namespace tqx::python
{

namespace
{

/// A place in a row of files where reading can begin, and the times around it.
struct Cut {
    size_t file;
    uint64_t offset;   ///< in the file
    uint64_t position; ///< in all files
    GnssMillis before; ///< latest time of a block before it; noMillis when there is none
    GnssMillis after;  ///< earliest time of a block after it; likewise
};

/// The later of two times that may be missing.
GnssMillis latest(GnssMillis a, GnssMillis b)
{
    return a == noMillis ? b : b == noMillis ? a : std::max(a, b);
}

/// All places, the end included.
std::vector<Cut> cutsOf(const std::vector<std::shared_ptr<LogFile>>& files)
{
    std::vector<Cut> cuts;
    std::vector<GnssMillis> earliest;
    uint64_t start = 0;
    GnssMillis before = noMillis;
    for (size_t file = 0; file < files.size(); ++file) {
        const Index& index = files[file]->getIndex();
        const FramedPages& pages = index.getPages();
        const bool canEnter = !files[file]->isCompressed() && files[file]->getPaths().size() == 1;
        for (uint32_t page = 0; page < pages.getEndPage(); ++page) {
            const PageRow& row = pages.rowOf(page);
            if (page == 0 || canEnter) {
                const uint64_t offset = page == 0 ? 0 : index.getPageEntry(page);
                cuts.push_back({file, offset, start + offset, before, noMillis});
                earliest.push_back(noMillis);
            }
            before = latest(before, row.maxTime);
            earliest.back() = std::min(earliest.back(), row.minTime);
        }
        start += index.getLogSize();
    }
    if (cuts.empty())
        return cuts;
    cuts.push_back(
        {files.size() - 1, files.back()->getIndex().getLogSize(), start, before, noMillis});
    GnssMillis after = noMillis;
    for (size_t i = earliest.size(); i-- > 0;) {
        after = std::min(after, earliest[i]); // noMillis is larger than any time
        cuts[i].after = after;
    }
    return cuts;
}

std::vector<EpochPiece> piecesOf(const std::vector<std::shared_ptr<LogFile>>& files,
                                 const Cut& begin, const Cut& end)
{
    std::vector<EpochPiece> pieces;
    for (size_t file = begin.file; file <= end.file; ++file) {
        EpochPiece piece;
        piece.paths = files[file]->getPaths();
        piece.begin = file == begin.file ? begin.offset : 0;
        piece.end = file == end.file ? end.offset : files[file]->getIndex().getLogSize();
        if (piece.begin != piece.end)
            pieces.push_back(std::move(piece));
    }
    return pieces;
}

/// The last place, up to `at`, before which no block is at `time` or later.
size_t leadIn(const std::vector<Cut>& cuts, size_t at, GnssMillis time)
{
    while (at > 0 && cuts[at].before != noMillis && cuts[at].before >= time)
        --at;
    return at;
}

/// The first place, from `at` on, after which no block is earlier than `time`.
size_t leadOut(const std::vector<Cut>& cuts, size_t at, GnssMillis time)
{
    while (at + 1 < cuts.size() && cuts[at].after < time)
        ++at;
    return at;
}

} // namespace

std::vector<EpochPart> divideEpochs(const std::vector<std::shared_ptr<LogFile>>& files,
                                    uint64_t bytes, GnssMillis lead)
{
    const std::vector<Cut> cuts = cutsOf(files);
    std::vector<EpochPart> parts;
    std::vector<size_t> starts; ///< cut of each part
    for (size_t i = 0; i + 1 < cuts.size(); ++i) {
        // The latest epoch before the place may go on after it.
        const GnssMillis time = cuts[i].before;
        if (!starts.empty()) {
            const bool isFull = cuts[i].position - cuts[starts.back()].position >= bytes;
            const bool isLater =
                time != noMillis && (!parts.back().from || time > *parts.back().from);
            if (!isFull || !isLater)
                continue;
            parts.back().to = time;
        }
        starts.push_back(i);
        parts.emplace_back();
        if (starts.size() > 1)
            parts.back().from = time;
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        const size_t next = i + 1 < parts.size() ? starts[i + 1] : cuts.size() - 1;
        size_t begin = starts[i];
        if (parts[i].from)
            begin = leadIn(cuts, begin, *parts[i].from - std::min(lead, *parts[i].from));
        const size_t end = parts[i].to ? leadOut(cuts, next, *parts[i].to) : next;
        parts[i].pieces = piecesOf(files, cuts[begin], cuts[end]);
        parts[i].bytes = cuts[next].position - cuts[starts[i]].position;
    }
    return parts;
}

} // namespace tqx::python
