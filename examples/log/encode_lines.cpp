// encode_lines
//
// Encodes JSON Lines from standard input, and prints how large each block is.

#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/read/LineError.h"

#include <cstdio>
#include <iostream>
#include <string>

int main()
{
    tqx::LineEncoder encoder;
    for (std::string line; std::getline(std::cin, line);) {
        try {
            std::printf("%zu bytes\n", encoder.encode(line).size());
        } catch (const tqx::LineError& error) {
            std::printf("%s\n", error.what());
        }
    }
    return 0;
}
