#include "qvcore/Module.h"

#include <gtest/gtest.h>

TEST(ModuleTest, IsInitializedBetweenTheTwoCalls) {
    constexpr std::uint64_t identity = 0x123456789ABCDEFu;
    EXPECT_EQ(QVModuleIsInitialized(identity), 0);
    QVModuleSetInitialized(identity, 1);
    EXPECT_EQ(QVModuleIsInitialized(identity), 1);
    EXPECT_EQ(QVModuleIsInitialized(identity + 1), 0);
    QVModuleSetInitialized(identity, 1);
    QVModuleSetInitialized(identity, 0);
    EXPECT_EQ(QVModuleIsInitialized(identity), 0);
    QVModuleSetInitialized(identity, 0);
    EXPECT_EQ(QVModuleIsInitialized(identity), 0);
}
