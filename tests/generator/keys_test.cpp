#include "read/Keys.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace
{

TEST(Keys, ThePageIsThatOfTheReader)
{
    std::ifstream stream(KEYS_PAGE, std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_EQ(korcg::generator::keysPage(), page)
        << "write it with korcg-generate --keys > doc/description-keys.md";
}

} // namespace
