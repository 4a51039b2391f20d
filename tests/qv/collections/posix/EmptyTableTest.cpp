// A table without buckets is not refused: the first look-up divides by 0, and the processor says
// so. On this system only: the other has no death tests.

#include "qv/collections/StringHashMap.h"
#include "qv/collections/qvcom/HashMap.h"

#include <gtest/gtest.h>

using namespace qv;

namespace {

TEST(EmptyTableDeathTest, FirstLookUpDividesByZeroAsKept) {
    const auto map = make<collections::qvcom::HashMap>(0, 0.75f);
    EXPECT_EQ(map->getSize(), 0);
    EXPECT_TRUE(map->createKeySet()->isEmpty());
    map->clear();
    EXPECT_DEATH(map->get(nullptr), "");
    const collections::StringHashMap typed(0, 0.75f);
    EXPECT_DEATH(typed.get(u"a", -1), "");
}

} // namespace
