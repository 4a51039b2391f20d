#include "qv/ComObject.h"

#include "qv/Object.h"
#include "qv/Reference.h"
#include "qv/Results.h"
#include "qv/qvcom/Module.h"
#include "tests/support/CountedObject.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using support::CountedObject;

namespace {

TEST(ComObjectTest, StartsWithoutReferences) {
    qv::ComObject object;
    EXPECT_EQ(object.GetRefCount(), 0u);
}

TEST(ComObjectTest, LivesFromTheFirstReferenceToTheLast) {
    int alive = 0;
    auto* object = new CountedObject(alive);
    EXPECT_EQ(object->AddRef(), 1u);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->GetRefCount(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(alive, 0);
}

TEST(ComObjectTest, ModuleCountsLiveObjectsAndNotReferences) {
    qv::qvcom::Module module;
    int alive = 0;
    auto* object = new CountedObject(alive);
    object->SetComModule(&module);
    EXPECT_EQ(module.GetRefCount(), 0u);
    object->AddRef();
    EXPECT_EQ(module.GetRefCount(), 1u);
    object->AddRef();
    object->AddRef();
    EXPECT_EQ(module.GetRefCount(), 1u);
    object->Release();
    object->Release();
    EXPECT_EQ(module.GetRefCount(), 1u);
    object->Release();
    EXPECT_EQ(module.GetRefCount(), 0u);
    EXPECT_EQ(alive, 0);
}

TEST(ComObjectTest, LastReleaseFreesTheModuleBeforeTheDestructorRuns) {
    struct Ending : qv::Object {
        explicit Ending(const qv::qvcom::Module& module, std::uint32_t& seen)
            : module_(module), seen_(seen) {}
        ~Ending() override { seen_ = module_.GetRefCount(); }
        const qv::qvcom::Module& module_;
        std::uint32_t& seen_;
    };
    qv::qvcom::Module module;
    std::uint32_t seen = 9;
    auto* object = new Ending(module, seen);
    object->SetComModule(&module);
    object->AddRef();
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(seen, 0u);
    seen = 9;
    object = new Ending(module, seen);
    object->SetComModule(&module);
    object->AddRef();
    EXPECT_EQ(module.GetRefCount(), 1u);
    object->ReleaseLast();
    EXPECT_EQ(seen, 0u);
    EXPECT_EQ(module.GetRefCount(), 0u);
}

TEST(ComObjectTest, InternalCountingTouchesNeitherLifeNorModule) {
    qv::qvcom::Module module;
    int alive = 0;
    CountedObject object(alive);
    object.SetComModule(&module);
    EXPECT_EQ(object.InternalAddRef(), 1u);
    EXPECT_EQ(module.GetRefCount(), 0u);
    EXPECT_EQ(object.InternalRelease(), 0u);
    EXPECT_EQ(alive, 1);
}

TEST(ComObjectTest, RefusesAggregationWhateverTheArgument) {
    qv::ComObject object;
    support::ForeignComponent outer;
    EXPECT_EQ(object.SetOuterUnknown(nullptr), qv::QV_E_NOAGGREGATION);
    EXPECT_EQ(object.SetOuterUnknown(&outer), qv::QV_E_NOAGGREGATION);
    EXPECT_EQ(outer.count(), 1u);
}

TEST(ComObjectTest, AnswersOnlyTheUnknownInterface) {
    qv::ComObject object;
    object.AddRef();
    void* out = nullptr;
    EXPECT_EQ(object.QueryInterface(IID_IQVUnknown, &out), 0);
    EXPECT_EQ(out, static_cast<void*>(static_cast<IQVUnknown*>(&object)));
    EXPECT_EQ(object.GetRefCount(), 2u);
    EXPECT_EQ(object.NonDelegatingQueryInterface(IID_IQVUnknown, &out), 0);
    EXPECT_EQ(object.GetRefCount(), 3u);
    out = &object;
    EXPECT_EQ(object.QueryInterface(IID_IQVComparable, &out), qv::QV_E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST(ComObjectTest, CopyHasNeitherCountNorModule) {
    qv::qvcom::Module module;
    qv::ComObject object;
    object.SetComModule(&module);
    object.AddRef();
    qv::ComObject copy(object);
    EXPECT_EQ(copy.GetRefCount(), 0u);
    copy.AddRef();
    EXPECT_EQ(module.GetRefCount(), 1u);
    copy = object;
    EXPECT_EQ(copy.GetRefCount(), 1u);
}

TEST(ComObjectThreadsTest, CountsFromManyThreads) {
    int alive = 0;
    auto* object = new CountedObject(alive);
    object->AddRef();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([object] {
            for (int n = 0; n < 10000; ++n) {
                object->AddRef();
                object->Release();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(object->GetRefCount(), 1u);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(alive, 0);
}

TEST(ComObjectThreadsTest, InternalCountsOfTwoThreadsLoseNone) {
    // Between its construction and its first reference nothing keeps an object's count above 0.
    constexpr int enough = 200000;
    constexpr int most = 20000000; // where two threads hardly ever run at once
    int alive = 0;
    CountedObject object(alive);
    std::atomic<int> meetings{0};
    std::atomic<int> wrong{0};
    const auto run = [&] {
        for (int n = 0; n < most && meetings.load(std::memory_order_relaxed) < enough; ++n) {
            const std::uint32_t taken = object.InternalAddRef();
            const std::uint32_t left = object.InternalRelease();
            meetings += taken == 2;
            wrong += taken < 1 || taken > 2 || left > 1;
        }
    };
    std::thread other(run);
    run();
    other.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(object.GetRefCount(), 0u);
    EXPECT_EQ(alive, 1);
}

// --- Reference ---

TEST(ReferenceTest, HoldsFromConstructionToDestruction) {
    int alive = 0;
    {
        const qv::Reference<CountedObject> held(new CountedObject(alive));
        EXPECT_EQ(held->GetRefCount(), 1u);
        const qv::Reference<CountedObject> second(held);
        EXPECT_EQ(held->GetRefCount(), 2u);
        const qv::Reference<qv::Object> base(held);
        EXPECT_EQ(held->GetRefCount(), 3u);
        EXPECT_EQ(static_cast<qv::Object*>(base), held.get());
        EXPECT_EQ(held->GetRefCount(), 3u);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ReferenceTest, IsOnePointer) { EXPECT_EQ(sizeof(qv::Reference<qv::Object>), sizeof(void*)); }

TEST(ReferenceTest, AssignmentToItselfLeavesTheCount) {
    int alive = 0;
    qv::Reference<CountedObject> held(new CountedObject(alive));
    auto& same = held;
    held = same;
    EXPECT_EQ(held->GetRefCount(), 1u);
    held = held.get();
    EXPECT_EQ(held->GetRefCount(), 1u);
}

TEST(ReferenceTest, AssignmentReleasesTheOldObject) {
    int first = 0;
    int second = 0;
    qv::Reference<CountedObject> held(new CountedObject(first));
    held = qv::Reference<CountedObject>(new CountedObject(second));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
    held = nullptr;
    EXPECT_EQ(second, 0);
    EXPECT_EQ(held.get(), nullptr);
}

TEST(ReferenceTest, NullIsHeldLikeAnyPointer) {
    const qv::Reference<CountedObject> none;
    const qv::Reference<CountedObject> copy(none);
    EXPECT_FALSE(copy);
}

TEST(ReferenceTest, MoveTakesTheReferenceAlong) {
    int alive = 0;
    qv::Reference<CountedObject> held(new CountedObject(alive));
    const qv::Reference<CountedObject> moved(std::move(held));
    EXPECT_EQ(moved->GetRefCount(), 1u);
}

TEST(ReferenceTest, AdoptTakesOverAReferenceAndDetachGivesItUp) {
    int alive = 0;
    auto* const object = new CountedObject(alive);
    object->AddRef();
    auto held = qv::Reference<CountedObject>::adopt(object);
    EXPECT_EQ(object->GetRefCount(), 1u) << "the one that was there";
    EXPECT_EQ(held.detach(), object);
    EXPECT_EQ(held.get(), nullptr);
    EXPECT_EQ(object->GetRefCount(), 1u);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(qv::Reference<CountedObject>::adopt(nullptr).detach(), nullptr);
}

TEST(ReferenceTest, AssignmentTakesTheNewReferenceBeforeItReleasesTheOld) {
    // The old object is the only holder of the new one.
    struct Holder : qv::Object {
        qv::Reference<CountedObject> inner;
    };
    int alive = 0;
    qv::Reference<qv::Object> held(new Holder);
    auto* const inner = new CountedObject(alive);
    static_cast<Holder*>(held.get())->inner = inner;
    held = inner;
    EXPECT_EQ(held->GetRefCount(), 1u);
    EXPECT_EQ(alive, 1);
}

TEST(ReferenceTest, CopyReferenceSharesAndNeverClones) {
    int alive = 0;
    const qv::CopyReference<CountedObject> held(new CountedObject(alive));
    const qv::CopyReference<CountedObject> copy = held;
    EXPECT_EQ(copy.get(), held.get());
    EXPECT_EQ(held->GetRefCount(), 2u);
    EXPECT_EQ(alive, 1);
}

} // namespace
