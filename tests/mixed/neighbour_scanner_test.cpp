#include "MixedBytes.h"
#include "ReferenceScanner.h"
#include "tqx/log/mixed/NeighbourScanner.h"

#include <gtest/gtest.h>

#include <ctime>

namespace
{

using tqx::Neighbour;
using tqx::NeighbourKind;
using tqx::NeighbourScanner;

/// A scanner whose doings are written down, held to its accounting and to the bytes of the stream.
class RecordingScanner : private NeighbourScanner::Listener
{
public:
    explicit RecordingScanner(const Bytes& bytes, uint64_t start = 0)
        : m_stream(bytes), m_next(start)
    {
    }

    void append(size_t size)
    {
        const Bytes piece(m_stream.begin() + static_cast<std::ptrdiff_t>(m_fed),
                          m_stream.begin() + static_cast<std::ptrdiff_t>(m_fed + size));
        m_scanner.append(m_next + m_fed, piece.data(), piece.size());
        m_fed += size;
        EXPECT_EQ(m_reported + m_scanner.bytesLeft(), m_fed);
        EXPECT_LT(m_scanner.bytesLeft(), 1029U);
    }

    Parts end()
    {
        m_scanner.end();
        EXPECT_EQ(m_scanner.bytesLeft(), 0U);
        EXPECT_EQ(m_reported, m_fed);
        return m_parts;
    }

    Parts inPiecesOf(size_t size)
    {
        while (m_fed < m_stream.size())
            append(std::min(size, m_stream.size() - m_fed));
        return end();
    }

private:
    void onRecognised(const Neighbour& neighbour) override
    {
        ASSERT_EQ(neighbour.offset, m_next + m_reported);
        ASSERT_LE(m_reported + neighbour.size, m_fed + m_stream.size());
        EXPECT_TRUE(std::equal(neighbour.data, neighbour.data + neighbour.size,
                               m_stream.begin() + static_cast<std::ptrdiff_t>(m_reported)));
        m_reported += neighbour.size;
        addPart(m_parts, neighbour);
    }
    void onDamage(uint64_t offset, uint64_t count) override
    {
        ASSERT_EQ(offset, m_next + m_reported);
        ASSERT_NE(count, 0U);
        m_reported += count;
        addDamage(m_parts, offset, count);
    }

    const Bytes& m_stream;
    uint64_t m_next;
    uint64_t m_fed = 0;
    uint64_t m_reported = 0;
    Parts m_parts;
    NeighbourScanner m_scanner{*this};
};

struct Row {
    const char* name;
    Bytes run;
    std::string kinds; ///< kinds of the parts
};

std::string kindsOf(const Parts& parts)
{
    std::string kinds;
    for (const Part& part : parts)
        kinds += part.kind;
    return kinds;
}

const Bytes gga = sentence("GPGGA,115942.00,4704.2,N,01527.0,E,1,12,0.4,367.7,M,44.5,M,,");
const Bytes wholeFrame = frame(Bytes{0x3e, 0xd0, 1, 2, 3});

const Row rows[] = {
    {"SentencesAndFrames", gga + wholeFrame + sentence("AIVDM,1,1,,A,13u?,0", '!') + wholeFrame,
     "NRNR"},
    {"EmptyFrame", frame({}), "R"},
    {"LongestFrame", frame(Bytes(1023, 0xd3)), "R"},
    {"NoReservedBitsInFrames", flipped(wholeFrame, 0) + Bytes{0xd3, 4, 0} + gga, "-N"},
    {"LowerCaseChecksum", text("$PABC,1*0d\r\n"), "N"},
    {"WrongSentence", sentence("GPGGA,1", '$', 1), "-"},
    {"SentenceWithoutChecksum", text("\x01$GPGGA,1\r\n"), "-"},
    {"SentenceWithoutAddress", sentence("GP,1") + sentence("gpgga,1"), "-"},
    {"TailOfASentence", text("704.2,N*5A\r\nreply\r\n"), "-A"},
    {"SentenceInNoise", text("\x01\x02") + gga + text("\x03"), "-N-"},
    {"SentenceAfterHalfALine", text("half a l") + gga, "-N"},
    {"SentenceAfterHalfASentence", cut(gga, 20) + gga, "-N"},
    {"NeighboursInFrame", frame(gga + wholeFrame), "R"},
    {"NeighboursInDamagedFrame", flipped(frame(gga + wholeFrame), 2), "-NR-"},
    {"Reply", text("$R: state\r\n  a: 1\r\n\r\nx\r\nCOM1>"), "AAAAA"},
    {"ReplyAfterDamagedSentence", sentence("GPGGA,1", '$', 1) + text("reply\r\n"), "-A"},
    {"NoTextWithinNoise", text("\x01 looks like a text\r\n and goes on\r\n"), "-"},
    {"NoTextTooShort", text("abc\r\nlong enough\r\n"), "-"},
    {"NoTextByLineFeedAlone", text("{\"a\": 1}\n"), "-"},
    {"NoTextOfAFalseSync", text("$@abcdefgh\r\n"), "-"},
    {"EmptyLinesBeforeAText", text("\r\n\r\nreply\r\n"), "A"},
    {"EmptyLinesBeforeAPrompt", text("\r\nIP10>"), "A"},
    {"EmptyLinesBeforeASentence", text("\r\n") + gga, "-N"},
    {"PromptBeforeASentence", text("USB1>") + gga, "AN"},
    {"NoPrompts", text("COM>COM12>1OM1>com1>"), "-"},
    {"CutAtTheEnd", gga + cut(gga, gga.size() - 1), "N-"},
    {"LongestLine", Bytes(998, 'x') + text("\r\n"), "A"},
    {"LineTooLong", Bytes(999, 'x') + text("\r\n"), "-"},
};

TEST(NeighbourScanner, TellsNeighboursFromDamage)
{
    for (const Row& row : rows) {
        const Parts expected = referenceParts(row.run);
        EXPECT_EQ(kindsOf(expected), row.kinds) << row.name << " by reference";
        for (const size_t piece : {size_t{1}, size_t{7}, row.run.size()}) {
            EXPECT_EQ(RecordingScanner(row.run).inPiecesOf(piece), expected)
                << row.name << " in pieces of " << piece;
        }
    }
}

TEST(NeighbourScanner, EqualsTheReferenceWhateverThePieces)
{
    std::string kinds;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        const Bytes run = randomRun(random);
        const Parts expected = referenceParts(run);
        kinds += kindsOf(expected);
        ASSERT_EQ(RecordingScanner(run, seed).end(), Parts());
        ASSERT_EQ(RecordingScanner(run).inPiecesOf(1), expected) << "seed " << seed;
        ASSERT_EQ(RecordingScanner(run).inPiecesOf(run.size()), expected) << "seed " << seed;
        RecordingScanner inPieces(run);
        for (size_t at = 0; at < run.size();) {
            const size_t size = std::min<size_t>(run.size() - at, 1 + random() % 400);
            inPieces.append(size);
            at += size;
        }
        ASSERT_EQ(inPieces.end(), expected) << "seed " << seed;
    }
    for (const char kind : {'N', 'R', 'A', '-'})
        EXPECT_GT(std::count(kinds.begin(), kinds.end(), kind), 1000) << kind;
}

// Nothing goes on from one run to the next: neither a sentence nor a text.
TEST(NeighbourScanner, RunsEndWhereTheOffsetJumps)
{
    class : public NeighbourScanner::Listener
    {
    public:
        void onRecognised(const Neighbour& neighbour) override { addPart(parts, neighbour); }
        void onDamage(uint64_t offset, uint64_t count) override { addDamage(parts, offset, count); }
        Parts parts;
    } found;
    NeighbourScanner scanner(found);
    const Bytes line = text("reply\r\n");
    scanner.append(0, gga.data(), 10);
    scanner.append(100, gga.data() + 10, gga.size() - 10);
    scanner.append(1000, line.data(), line.size());
    scanner.append(2000, line.data() + 5, 2);
    scanner.end();
    EXPECT_EQ(found.parts,
              (Parts{{0, 10, '-'}, {100, gga.size() - 10, '-'}, {1000, 7, 'A'}, {2000, 2, '-'}}));
}

TEST(Neighbour, KnowsItsType)
{
    const Bytes ais = sentence("AIVDM,1", '!');
    EXPECT_EQ((Neighbour{NeighbourKind::Nmea, gga.data(), gga.size(), 0}.getAddress()), "GPGGA");
    EXPECT_EQ((Neighbour{NeighbourKind::Nmea, ais.data(), ais.size(), 0}.getAddress()), "AIVDM");
    EXPECT_EQ(
        (Neighbour{NeighbourKind::Rtcm3, wholeFrame.data(), wholeFrame.size(), 0}.getNumber()),
        1005);
    const Bytes tiny = frame({0x3e});
    EXPECT_EQ((Neighbour{NeighbourKind::Rtcm3, tiny.data(), tiny.size(), 0}.getNumber()), 0);
}

double secondsToScan(const Bytes& run, size_t piece)
{
    const std::clock_t start = std::clock();
    RecordingScanner(run).inPiecesOf(piece);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Summing each claim again would cost hundreds of times as much.
TEST(NeighbourScanner, OverlappingClaimsCostLittle)
{
    constexpr size_t size = 4000000;
    Bytes claims;
    while (claims.size() < size)
        claims.insert(claims.end(), {0xd3, 3, 0xff});
    Bytes frames;
    while (frames.size() < size)
        frames = frames.size() < 100000 ? frames + frame(Bytes(1000, 1)) : frames + frames;
    EXPECT_LT(secondsToScan(claims, 4096), 60 * secondsToScan(frames, 4096));
}

} // namespace
