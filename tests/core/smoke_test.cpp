#include <gtest/gtest.h>
#include "qziso32.h"
TEST(Smoke, Loads) { EXPECT_EQ(0, OSDaysSince01011800(1800, 1, 1)); }
