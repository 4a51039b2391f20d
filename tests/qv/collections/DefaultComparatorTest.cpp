#include "qv/collections/DefaultComparator.h"

#include "qv/util/Comparator.h"

#include <gtest/gtest.h>
#include <thread>
#include <typeinfo>
#include <vector>

using qv::collections::GetDefaultComparator;

namespace {

TEST(DefaultComparatorTest, IsOneForTheProcess) {
    const auto comparator = GetDefaultComparator();
    EXPECT_EQ(comparator.get(), GetDefaultComparator().get());
    EXPECT_EQ(comparator.get(), CQVCollections::getDefaultComparator().get());
    IQVComparator& face = *comparator;
    EXPECT_EQ(typeid(face), typeid(qv::util::Comparator));
}

TEST(DefaultComparatorTest, IsCountedForTheCaller) {
    const auto comparator = GetDefaultComparator();
    const std::uint32_t count = comparator->AddRef();
    comparator->Release();
    {
        const auto again = GetDefaultComparator();
        EXPECT_EQ(again->AddRef(), count + 1);
        again->Release();
    }
    EXPECT_EQ(comparator->AddRef(), count);
    comparator->Release();
}

TEST(DefaultComparatorThreadsTest, IsOneForAllThreads) {
    std::vector<IQVComparator*> seen(8);
    std::vector<std::thread> threads;
    for (IQVComparator*& place : seen) {
        threads.emplace_back([&place] { place = GetDefaultComparator(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(seen, std::vector<IQVComparator*>(8, seen.front()));
}

} // namespace
