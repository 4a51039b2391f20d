// What a class derived from a lock counts on when it is not compiled anew: the size of the lock,
// and that no operation stands behind those that it tells.

#include "qv/sync/Condition.h"
#include "qv/sync/Event.h"
#include "qv/sync/FakeMutex.h"
#include "qv/sync/Gate.h"
#include "qv/sync/Mutex.h"
#include "qv/sync/ReaderWriterLock.h"
#include "qv/sync/Semaphore.h"
#include "tests/support/Slots.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

template <class Lock, class Base = sync::Object>
constexpr bool isBaseWithHandle = sizeof(Lock) == sizeof(Base) + sizeof(std::uint64_t);

static_assert(sizeof(sync::Object) == sizeof(qv::Object));
static_assert(sizeof(sync::LockObject) == sizeof(qv::Object));
static_assert(sizeof(sync::FakeMutex) == sizeof(qv::Object));
static_assert(isBaseWithHandle<sync::Mutex>);
static_assert(isBaseWithHandle<sync::ReaderWriterLock>);
static_assert(isBaseWithHandle<sync::Event>);
static_assert(isBaseWithHandle<sync::Gate>);
static_assert(isBaseWithHandle<sync::Semaphore>);
static_assert(isBaseWithHandle<sync::Condition, qv::Object>);
static_assert(sizeof(sync::Condition::Holder) == sizeof(sync::Condition*));

template <class Lock>
class Extended : public Lock {
public:
    virtual void added() {}
};

/// The slot of an operation that a derived class adds, counted from `last`.
template <class Lock, class Member>
std::ptrdiff_t addedBehind(Member last) {
    return support::slotOf(&Extended<Lock>::added) - support::slotOf(last);
}

TEST(LockLayoutTest, NoOperationStandsBehindThoseThatAreTold) {
    EXPECT_EQ(addedBehind<sync::Object>(&sync::Object::tryWait), 1);
    EXPECT_EQ(addedBehind<sync::LockObject>(&sync::LockObject::signal), 1);
    EXPECT_EQ(addedBehind<sync::Mutex>(&sync::Mutex::signal), 1);
    EXPECT_EQ(addedBehind<sync::FakeMutex>(&sync::LockObject::signal), 1);
    EXPECT_EQ(addedBehind<sync::ReaderWriterLock>(&sync::ReaderWriterLock::signalShared), 1);
    EXPECT_EQ(addedBehind<sync::Event>(&sync::Event::signal), 1);
    EXPECT_EQ(addedBehind<sync::Gate>(&sync::Gate::close), 1);
    EXPECT_EQ(addedBehind<sync::Semaphore>(&sync::Semaphore::getValue), 1);
    EXPECT_EQ(addedBehind<sync::Condition>(&qv::Object::toString), 1);
}

} // namespace
