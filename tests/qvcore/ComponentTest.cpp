#include "qvcore/Component.h"

#include "tests/qvcore/Results.h"

#include <gtest/gtest.h>

using namespace support;

namespace {

constexpr GUID classId = {0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID otherClassId = {0x11111112, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID interfaceId = {0xAAAAAAAA, 0xBBBB, 0xCCCC, {8, 7, 6, 5, 4, 3, 2, 1}};
constexpr GUID factoryId = {0x00000001, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constexpr std::int32_t noInterface = bits(0x80004002u);
constexpr std::int32_t noAggregation = bits(0x80040110u);

bool isSame(const GUID& left, const GUID& right) { return QVComCompareGUID(&left, &right) == 0; }

/// A class object as a foreign module would have it. What it makes is a plain number.
class Factory {
public:
    virtual std::int32_t QueryInterface(const GUID&, void**) { return noInterface; }
    virtual std::uint32_t AddRef() { return ++references; }
    virtual std::uint32_t Release() { return --references; }
    virtual std::int32_t CreateInstance(void* outer, const GUID& iid, void** out) {
        if (outer != nullptr) {
            return noAggregation;
        }
        if (!isSame(iid, interfaceId)) {
            *out = nullptr;
            return noInterface;
        }
        *out = &product;
        return 0;
    }
    virtual std::int32_t LockServer(std::int32_t) { return 0; }

    std::uint32_t references = 0;
    int product = 42;

protected:
    ~Factory() = default;
};

class TheFactory final : public Factory {
} factory;

std::int32_t getClassObject(const GUID* id, const GUID* iid, void** out) {
    EXPECT_TRUE(isSame(*id, classId));
    EXPECT_TRUE(isSame(*iid, factoryId));
    factory.AddRef();
    *out = static_cast<Factory*>(&factory);
    return 0;
}

std::int32_t getNoClassObject(const GUID*, const GUID*, void**) { return bits(0x80040111u); }

/// A registration for the length of a test.
class ComponentTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QVComRegisterClass(u"Test.Component.1", &classId, getClassObject), 0);
    }
    void TearDown() override {
        QVComRevokeClass(&classId);
        QVComRevokeClass(&otherClassId);
        EXPECT_EQ(factory.references, 0u);
    }
};

std::int32_t find(const char16_t* progId) {
    GUID found = {};
    const std::int32_t result = QVComClassIDFromProgID(progId, &found);
    EXPECT_TRUE(isSame(found, result == 0 ? classId : GUID{}));
    return result;
}

} // namespace

TEST_F(ComponentTest, IsFoundByItsProgIdInAnyCase) {
    EXPECT_EQ(find(u"Test.Component.1"), 0);
    EXPECT_EQ(find(u"TEST.component.1"), 0);
    EXPECT_EQ(find(u"Test.Component"), unknownProgId);
    EXPECT_EQ(find(u"Test.Component.12"), unknownProgId);
}

TEST_F(ComponentTest, IsNotFoundWithoutAName) {
    EXPECT_EQ(find(u""), unknownProgId);
    EXPECT_EQ(find(nullptr), unknownProgId);
    EXPECT_EQ(QVComClassIDFromProgID(u"Test.Component.1", nullptr), nullOutput);
}

TEST_F(ComponentTest, IsNotFoundAfterItsRegistrationIsRevoked) {
    EXPECT_EQ(QVComRevokeClass(&classId), 0);
    EXPECT_EQ(find(u"Test.Component.1"), unknownProgId);
    void* out = &factory;
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, nullptr, &interfaceId, &out),
              classNotRegistered);
    EXPECT_EQ(out, &factory);
    EXPECT_EQ(QVComRevokeClass(&classId), classNotRegistered);
}

TEST_F(ComponentTest, IsRegisteredOnce) {
    EXPECT_EQ(QVComRegisterClass(u"Another", &classId, getClassObject), alreadyExists);
    EXPECT_EQ(QVComRegisterClass(u"test.COMPONENT.1", &otherClassId, getClassObject),
              alreadyExists);
    EXPECT_EQ(QVComRegisterClass(u"Another", &otherClassId, getClassObject), 0);
}

TEST_F(ComponentTest, NeedsNoProgId) {
    ASSERT_EQ(QVComRevokeClass(&classId), 0);
    ASSERT_EQ(QVComRegisterClass(nullptr, &classId, getClassObject), 0);
    ASSERT_EQ(QVComRegisterClass(u"", &otherClassId, getNoClassObject), 0);
    void* out = nullptr;
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, nullptr, &interfaceId, &out), 0);
    EXPECT_EQ(out, &factory.product);
}

TEST_F(ComponentTest, RefusesNullArguments) {
    EXPECT_EQ(QVComRegisterClass(u"Another", nullptr, getClassObject), invalidArgument);
    EXPECT_EQ(QVComRegisterClass(u"Another", &otherClassId, nullptr), invalidArgument);
    EXPECT_EQ(QVComRevokeClass(nullptr), invalidArgument);
    void* out = nullptr;
    EXPECT_EQ(QVModuleComCreateObject(0, nullptr, nullptr, &interfaceId, &out), invalidArgument);
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, nullptr, nullptr, &out), invalidArgument);
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, nullptr, &interfaceId, nullptr), nullOutput);
}

TEST_F(ComponentTest, IsCreatedByItsClassObject) {
    void* out = nullptr;
    EXPECT_EQ(QVModuleComCreateObject(7, &classId, nullptr, &interfaceId, &out), 0);
    EXPECT_EQ(out, &factory.product);
}

TEST_F(ComponentTest, SaysWhatItsClassObjectSays) {
    void* out = &factory;
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, nullptr, &otherClassId, &out), noInterface);
    EXPECT_EQ(QVModuleComCreateObject(0, &classId, &factory, &interfaceId, &out), noAggregation);
    ASSERT_EQ(QVComRegisterClass(u"Another", &otherClassId, getNoClassObject), 0);
    EXPECT_EQ(QVModuleComCreateObject(0, &otherClassId, nullptr, &interfaceId, &out),
              bits(0x80040111u));
    EXPECT_EQ(out, &factory) << "an output is not touched on failure";
}

TEST_F(ComponentTest, IsUnknownWithoutARegistration) {
    void* out = nullptr;
    EXPECT_EQ(QVModuleComCreateObject(0, &otherClassId, nullptr, &interfaceId, &out),
              classNotRegistered);
}
