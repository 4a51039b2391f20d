// A registration that fails for memory leaves nothing behind. On this system only: a Windows module
// has operators of its own, which a program cannot take the place of.

#include "qv/ClassManager.h"
#include "qv/Exceptions.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>
#include <new>

using namespace qv;

namespace {

class Late : public Object {};

bool tryRegister(std::size_t failing) {
    const support::Allocations allocations(failing);
    try {
        ClassManager::getInstance()->registerClass(u"test::Late", &typeid(Late), nullptr);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

TEST(ClassAllocationTest, RegistrationIsRepeatedWhereMemoryRanOut) {
    std::size_t failing = 1;
    while (!tryRegister(failing)) {
        EXPECT_THROW(Class::forName(u"test::Late"), ClassNotFoundException) << failing;
        EXPECT_THROW(Class::forType(&typeid(Late)), ClassNotFoundException) << failing;
        ++failing;
    }
    EXPECT_GT(failing, 3u) << "the record and its place in both maps";
    EXPECT_EQ(Class::forName(u"test::Late"), Class::forType(&typeid(Late)));
}
