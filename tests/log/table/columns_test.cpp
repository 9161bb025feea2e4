#include "Tables.h"

#include <gtest/gtest.h>
TEST(Columns, None) {}
