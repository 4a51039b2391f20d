#include "qv/collections/detail/ChainedTable.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

struct Entry {
    explicit Entry(std::uint32_t entryHash) : hash(entryHash) {}
    std::uint32_t hash;
    std::unique_ptr<Entry> next;
};

using Table = qv::collections::detail::ChainedTable<Entry, std::unique_ptr<Entry>>;

void fill(Table& table, int from, int to) {
    for (int i = from; i < to; ++i) {
        table.insert(std::make_unique<Entry>(static_cast<std::uint32_t>(i)));
    }
}

std::vector<std::uint32_t> chain(const Table& table, int bucket) {
    std::vector<std::uint32_t> hashes;
    for (const Entry* entry = table.getHead(bucket); entry != nullptr; entry = entry->next.get()) {
        hashes.push_back(entry->hash);
    }
    return hashes;
}

using Hashes = std::vector<std::uint32_t>;

TEST(ChainedTableTest, GrowsAtThreeQuarters) {
    EXPECT_EQ(Table::DEFAULT_CAPACITY, 101);
    EXPECT_EQ(Table::DEFAULT_LOAD, 0.75f);
    Table table(101, 0.75f);
    fill(table, 0, 75);
    EXPECT_EQ(table.getCapacity(), 101);
    fill(table, 75, 76);
    EXPECT_EQ(table.getCapacity(), 203);
    fill(table, 76, 152);
    EXPECT_EQ(table.getCapacity(), 203);
    fill(table, 152, 153);
    EXPECT_EQ(table.getCapacity(), 407);
    fill(table, 153, 2000);
    EXPECT_EQ(table.getCapacity(), 3263);
    EXPECT_EQ(table.getSize(), 2000);
}

TEST(ChainedTableTest, SmallestTableGrowsWithItsFirstEntry) {
    Table table(1, 0.75f);
    fill(table, 0, 1);
    EXPECT_EQ(table.getCapacity(), 3);
}

TEST(ChainedTableTest, NewEntriesStandInFront) {
    Table table(2, 100.0f);
    fill(table, 0, 5);
    EXPECT_EQ(chain(table, 0), (Hashes{4, 2, 0}));
    EXPECT_EQ(chain(table, 1), (Hashes{3, 1}));
}

TEST(ChainedTableTest, GrowthWalksFromTheLastBucketAndTurnsChainsRound) {
    Table table(2, 2.0f);
    table.insert(std::make_unique<Entry>(0u));
    table.insert(std::make_unique<Entry>(10u)); // bucket 0: 10, 0
    table.insert(std::make_unique<Entry>(5u));
    table.insert(std::make_unique<Entry>(15u)); // bucket 1: 15, 5
    table.insert(std::make_unique<Entry>(1u));
    EXPECT_EQ(table.getCapacity(), 5);
    EXPECT_EQ(chain(table, 0), (Hashes{0, 10, 5, 15}));
    EXPECT_EQ(chain(table, 1), Hashes{1});
}

TEST(ChainedTableTest, FindsByHashFirst) {
    Table table(1, 100.0f);
    fill(table, 0, 5);
    int asked = 0;
    const auto matches = [&](const Entry&) { return ++asked > 0; };
    EXPECT_EQ(table.find(3, matches)->hash, 3u);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(table.find(9, matches), nullptr);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(table.find(3, [](const Entry&) { return false; }), nullptr);
}

TEST(ChainedTableTest, TakesEntriesOut) {
    Table table(1, 100.0f);
    fill(table, 0, 4);
    const auto taken = table.remove(table.find(2, [](const Entry&) { return true; }));
    EXPECT_EQ(taken->hash, 2u);
    EXPECT_EQ(taken->next, nullptr);
    EXPECT_EQ(chain(table, 0), (Hashes{3, 1, 0}));
    EXPECT_EQ(table.getSize(), 3);
}

TEST(ChainedTableTest, TakingAllKeepsTheSize) {
    Table table(3, 100.0f);
    fill(table, 0, 10);
    auto all = table.takeAll();
    EXPECT_EQ(table.getSize(), 10);
    for (int bucket = 0; bucket < 3; ++bucket) {
        EXPECT_EQ(table.getHead(bucket), nullptr);
    }
    int count = 0;
    for (const Entry* entry = all.get(); entry != nullptr; entry = entry->next.get()) {
        ++count;
    }
    EXPECT_EQ(count, 10);
    Table::release(std::move(all));
}

TEST(ChainedTableTest, LongChainEndsWithoutRecursion) {
    Table table(1, 1e30f);
    fill(table, 0, 1000000);
    EXPECT_EQ(table.getCapacity(), 1);
    Table::release(table.takeAll());
    fill(table, 0, 1000000);
}

} // namespace
