// Prints the record of every type: its size, and a checksum over where its members are and what
// they hold.

#include "TQX_Layout.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace
{

constexpr uint32_t endOfTypes = 1024; // numbers of record types are smaller

uint64_t checksum(const std::string& text)
{
    uint64_t sum = 0xcbf29ce484222325; // FNV-1a
    for (const char character : text)
        sum = (sum ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    return sum;
}

std::string describe(const Kor::MessageApi::TQX_FieldLayout& field)
{
    return std::string(field.name) + '@' + std::to_string(field.recordOffset) + ':' +
           std::to_string(static_cast<int>(field.type)) + 'x' + std::to_string(field.elements) +
           '#' + std::to_string(field.recordType) + '=' + std::to_string(field.code) + ';';
}

} // namespace

int main()
{
    for (uint32_t recordType = 1; recordType < endOfTypes; ++recordType) {
        const Kor::MessageApi::TQX_TypeLayout* type = TQX_layout(recordType);
        if (type == nullptr)
            continue;
        std::string members;
        for (int i = 0; i < type->fieldCount; ++i)
            members += describe(type->fields[i]);
        std::printf("%s %u %u %016llx\n", type->name, recordType, type->recordSize,
                    static_cast<unsigned long long>(checksum(members)));
    }
    return 0;
}
