#include "ReferenceFramer.h"

void Framing::addDropped(uint64_t offset, uint64_t size)
{
    if (!dropped.empty() && dropped.back().offset + dropped.back().size == offset) {
        dropped.back().size += size;
    } else {
        dropped.push_back({offset, size});
    }
}

uint64_t Framing::bytesInAll() const
{
    uint64_t bytes = left;
    for (const Stretch& stretch : blocks) {
        bytes += stretch.size;
    }
    for (const Stretch& stretch : dropped) {
        bytes += stretch.size;
    }
    return bytes;
}

bool operator==(const Framing::Stretch& left, const Framing::Stretch& right)
{
    return left.offset == right.offset && left.size == right.size;
}

bool operator==(const Framing& left, const Framing& right)
{
    return left.blocks == right.blocks && left.dropped == right.dropped &&
           left.checksumErrors == right.checksumErrors &&
           left.invalidLengths == right.invalidLengths && left.left == right.left;
}

std::ostream& operator<<(std::ostream& out, const Framing& framing)
{
    const auto stretches = [&](const char* name, const std::vector<Framing::Stretch>& list) {
        out << name;
        for (const Framing::Stretch& stretch : list) {
            out << ' ' << stretch.offset << '+' << stretch.size;
        }
    };
    const auto offsets = [&](const char* name, const std::vector<uint64_t>& list) {
        out << name;
        for (const uint64_t offset : list) {
            out << ' ' << offset;
        }
    };
    stretches("blocks:", framing.blocks);
    stretches("; dropped:", framing.dropped);
    offsets("; checksum errors:", framing.checksumErrors);
    offsets("; invalid lengths:", framing.invalidLengths);
    return out << "; left: " << framing.left;
}

Framing referenceFraming(const Bytes& stream, bool ended)
{
    Framing framing;
    size_t at = 0;
    while (at < stream.size()) {
        const size_t available = stream.size() - at;
        const bool sync = stream[at] == '$' && (available == 1 || stream[at + 1] == '@');
        if (!sync) {
            framing.addDropped(at, 1);
            ++at;
            continue;
        }
        const size_t length =
            available < 8 ? 0 : static_cast<size_t>(stream[at + 6] + 256 * stream[at + 7]);
        if (available < 8 || (length >= 8 && available < length)) {
            if (!ended) {
                break;
            }
        } else if (length < 8) {
            framing.invalidLengths.push_back(at);
        } else if (slowChecksum(&stream[at + 4], length - 4) ==
                   stream[at + 2] + 256 * stream[at + 3]) {
            framing.blocks.push_back({at, length});
            at += length;
            continue;
        } else {
            framing.checksumErrors.push_back(at);
        }
        const size_t given = available == 1 ? 1 : 2;
        framing.addDropped(at, given);
        at += given;
    }
    framing.left = stream.size() - at;
    return framing;
}
