#include "read/Load.h"

#include "model/Checks.h"
#include "model/Numbering.h"
#include "read/Reader.h"

#include <utility>

namespace korcg::generator
{

Format load(const std::vector<Source>& sources, Errors& errors, const Edition& edition)
{
    Ledger ownLedger;
    Ledger& ledger = edition.ledger == nullptr ? ownLedger : *edition.ledger;
    Format format = readDescription(sources, edition.number, ledger, errors);
    link(format, errors);
    placeFields(format);
    number(format, ledger, errors);
    ledger.finish(errors);
    check(format, errors);
    return format;
}

Format loadWithHistory(const std::vector<Source>& sources, Errors& errors, const Edition& edition)
{
    Ledger ownLedger;
    Ledger& ledger = edition.ledger == nullptr ? ownLedger : *edition.ledger;
    // The latest first: it is the one that a ledger grows by.
    Format latest = load(sources, errors, {0, &ledger});
    if (!errors.empty())
        return latest;
    if (edition.number > latest.edition)
        return load(sources, errors, {edition.number, &ledger});
    Format wanted = edition.number == 0 ? latest : Format{};
    Format later = std::move(latest);
    for (int number = later.edition - 1; number >= 1 && errors.empty(); --number) {
        Format earlier = load(sources, errors, {number, &ledger});
        checkGrowth(earlier, later, errors);
        if (later.edition == edition.number)
            wanted = std::move(later);
        later = std::move(earlier);
    }
    return later.edition == edition.number ? later : wanted;
}

} // namespace korcg::generator
