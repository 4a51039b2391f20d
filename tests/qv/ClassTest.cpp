#include "qv/Class.h"

#include "qv/ClassManager.h"
#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/sync/LockObject.h"
#include "tests/support/CountedObject.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>
#include <thread>

using namespace qv;

namespace {

class Registered : public Object {};
class SecondName : public Object {};
class Derived : public Registered {};

static_assert(!std::is_copy_constructible_v<Class> && !std::is_copy_assignable_v<Class>);
static_assert(!std::is_destructible_v<Class> && !std::is_default_constructible_v<Class>);

Object* makeRegistered() { return new Registered; }
Object* makeObject() { return new Object; }

TEST(ClassTest, RecordMakesAndKnowsItsInstances) {
    const Class* const record = Class::forName(u"CQVObject");
    EXPECT_EQ(String(record->getName()), u"CQVObject");
    const Reference<Object> made(record->createInstance());
    EXPECT_EQ(made->GetRefCount(), 1u);
    EXPECT_TRUE(record->isInstance(*made));
    EXPECT_FALSE(record->isInstance(String()));
}

TEST(ClassTest, InstanceOfASubclassIsNone) {
    EXPECT_FALSE(Class::forName(u"qv::Exception")->isInstance(IllegalStateException()));
    EXPECT_TRUE(Class::forName(u"qv::Exception")->isInstance(Exception()));
}

TEST(ClassTest, NewInstanceHasNoReferences) {
    const Reference<Object> made(Class::forName(u"CQVString")->createInstance());
    EXPECT_EQ(made->GetRefCount(), 1u);
    EXPECT_NE(dynamic_cast<String*>(made.get()), nullptr);
}

TEST(ClassTest, UnknownNameThrowsWithTheName) {
    EXPECT_EQ(support::thrownText<ClassNotFoundException>([] { Class::forName(u"no such"); }),
              "no such");
}

TEST(ClassTest, NamesDifferInCase) {
    EXPECT_THROW(Class::forName(u"cqvobject"), ClassNotFoundException);
}

TEST(ClassTest, UnknownTypeThrowsWithItsPrintableName) {
    EXPECT_EQ(support::thrownText<ClassNotFoundException>(
                  [] { Class::forType(&typeid(ResultException)); }),
              "qv::ResultException");
    EXPECT_THROW(ResultException().getClass(), ClassNotFoundException);
    EXPECT_THROW(ResultException().toString(), ClassNotFoundException);
}

TEST(ClassTest, TypeFindsTheRecordOfTheName) {
    EXPECT_EQ(Class::forType(&typeid(Object)), Class::forName(u"CQVObject"));
    EXPECT_EQ(String().getClass(), Class::forName(u"CQVString"));
    EXPECT_EQ(Class::forName(u"CQVString")->getClass(), Class::forName(u"qv::Class"));
}

TEST(ClassTest, ClassWithoutFactoryRefusesInstances) {
    const Class* const record = Class::forName(u"CQVAbstractCharBuffer");
    EXPECT_EQ(support::thrownText<IllegalAccessException>([&] { record->createInstance(); }), "");
    EXPECT_THROW(Class::forName(u"qv::Class")->createInstance(), IllegalAccessException);
}

TEST(ClassTest, FirstOfTwoRowsOfOneNameCounts) {
    for (const char16_t* name :
         {u"qv::IntErrorException", u"qv::IntDivByZeroException", u"qv::IntOverflowException"}) {
        const Reference<Object> made(Class::forName(name)->createInstance());
        EXPECT_TRUE(Class::forName(name)->isInstance(*made));
    }
}

TEST(ClassTest, EveryFactoryMakesAnInstanceOfItsClass) {
    int factories = 0;
    ClassManager::getInstance()->forEach(
        [](const Class& record, void* context) {
            try {
                const Reference<Object> made(record.createInstance());
                EXPECT_TRUE(record.isInstance(*made)) << String(record.getName()).getBytes();
                ++*static_cast<int*>(context);
            } catch (const IllegalAccessException&) {
            }
        },
        &factories);
    EXPECT_GT(factories, 20);
}

TEST(ClassTest, StreamsMadeByNameHaveTheirRoom) {
    struct Open : io::ByteArrayOutputStream {
        static auto capacity() { return &Open::getCapacity; }
    };
    const Reference<Object> bytes(Class::forName(u"CQVByteArrayOutputStream")->createInstance());
    const auto* const out = dynamic_cast<io::ByteArrayOutputStream*>(bytes.get());
    ASSERT_NE(out, nullptr);
    EXPECT_EQ((out->*Open::capacity())(), 256);
    const Reference<Object> text(Class::forName(u"CQVStringWriter")->createInstance());
    EXPECT_EQ(text->toString().getData(), String().getData()) << "no room of its own";
}

TEST(ClassTest, LocksMadeByNameAreAsNewOnes) {
    const auto canPass = [](const char16_t* name) {
        const Reference<Object> made(Class::forName(name)->createInstance());
        auto& lock = dynamic_cast<sync::Object&>(*made);
        const bool passed = lock.tryWait();
        if (auto* const mutex = dynamic_cast<sync::LockObject*>(made.get()); passed && mutex) {
            mutex->signal();
        }
        return passed;
    };
    EXPECT_FALSE(canPass(u"CQVSemaphore")) << "it has no posts";
    EXPECT_FALSE(canPass(u"CQVEvent"));
    EXPECT_FALSE(canPass(u"CQVGate"));
    EXPECT_TRUE(canPass(u"CQVMutex"));
    EXPECT_TRUE(canPass(u"CQVRWLock"));
}

TEST(ClassManagerTest, FirstRegistrationOfANameStands) {
    ClassManagerBase* const manager = ClassManager::getInstance();
    manager->registerClass(u"test::Registered", &typeid(Registered), &makeRegistered);
    manager->registerClass(u"test::Registered", &typeid(SecondName), &makeObject);
    const Reference<Object> made(Class::forName(u"test::Registered")->createInstance());
    EXPECT_NE(dynamic_cast<Registered*>(made.get()), nullptr);
    EXPECT_THROW(Class::forType(&typeid(SecondName)), ClassNotFoundException);
    EXPECT_EQ(Registered().getClass(), Class::forName(u"test::Registered"));
    EXPECT_TRUE(Registered().toString().startsWith(u"test::Registered@"));
    EXPECT_THROW(Derived().getClass(), ClassNotFoundException);
}

TEST(ClassManagerTest, SecondNameOfATypeIsANameOnly) {
    ClassManagerBase* const manager = ClassManager::getInstance();
    manager->registerClass(u"test::Again", &typeid(Object), nullptr);
    EXPECT_EQ(String(Class::forName(u"test::Again")->getName()), u"test::Again");
    EXPECT_EQ(String(Class::forType(&typeid(Object))->getName()), u"CQVObject");
}

TEST(ClassManagerTest, RecordsAreHeldByBothMaps) {
    EXPECT_EQ(Class::forName(u"CQVString")->GetRefCount(), 2u);
}

TEST(ClassThreadsTest, LookupsRunTogether) {
    std::vector<std::thread> threads;
    std::atomic<int> found{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 1000; ++n) {
                found += Class::forName(u"CQVString") == String().getClass();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(found, 4000);
}

} // namespace
