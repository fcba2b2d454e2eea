#include <gtest/gtest.h>

#include "velquad/frame.h"

TEST(MatIsEqual, ComparesToDecimalPlaces) {
    EXPECT_EQ(matIsEqual(1.0, 1.04, 1), 1);
    EXPECT_EQ(matIsEqual(1.0, 1.06, 1), 0);
}
