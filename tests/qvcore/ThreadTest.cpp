#include "qvcore/Thread.h"

#include <gtest/gtest.h>
#include <thread>

TEST(ThreadIdThreadsTest, TellsThreadsApart) {
    const std::uint32_t own = QVThreadGetID();
    std::uint32_t other = 0;
    std::thread([&other] { other = QVThreadGetID(); }).join();
    EXPECT_NE(own, 0u);
    EXPECT_NE(other, 0u);
    EXPECT_NE(own, other);
    EXPECT_EQ(QVThreadGetID(), own);
}
