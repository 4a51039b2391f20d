// Locks for which there is no memory. On this system only: here the platform layer allocates by the
// test program's operator new.

#include "qv/Exceptions.h"
#include "qv/sync/Condition.h"
#include "qv/sync/Event.h"
#include "qv/sync/Gate.h"
#include "qv/sync/Mutex.h"
#include "qv/sync/ReaderWriterLock.h"
#include "qv/sync/Semaphore.h"
#include "tests/support/Allocations.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

/// What the constructor throws when its first allocation fails.
template <class Lock, class... Arguments>
std::int32_t creationFailure(Arguments... arguments) {
    return support::thrownResult([&] {
        const support::Allocations allocations(1);
        const Lock lock(arguments...);
    });
}

TEST(LockCreationTest, AFailureIsRaisedByTheConstructor) {
    EXPECT_EQ(creationFailure<sync::Mutex>(), QV_E_OUTOFMEMORY);
    EXPECT_EQ(creationFailure<sync::ReaderWriterLock>(), QV_E_OUTOFMEMORY);
    EXPECT_EQ(creationFailure<sync::Event>(), QV_E_OUTOFMEMORY);
    EXPECT_EQ(creationFailure<sync::Gate>(), QV_E_OUTOFMEMORY);
    EXPECT_EQ(creationFailure<sync::Semaphore>(1U), QV_E_OUTOFMEMORY);
    EXPECT_EQ(creationFailure<sync::Condition>(), QV_E_OUTOFMEMORY);
}

} // namespace
