// An object of the library in the hands of the system's component runtime, with nothing in between.

#include "qv/Object.h"
#include "qv/Reference.h"
#include "qv/String.h"
#include "tests/support/CountedObject.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <objidl.h>

namespace {

/// The object as the system's own unknown interface: the same pointer.
IUnknown* asUnknown(qv::ComObject& object) {
    return reinterpret_cast<IUnknown*>(static_cast<IQVUnknown*>(&object));
}

class ComponentRuntimeTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_GE(CoInitializeEx(nullptr, COINIT_MULTITHREADED), 0); }
    void TearDown() override { CoUninitialize(); }
};

TEST_F(ComponentRuntimeTest, CountsAndQueriesThroughTheSystemsInterface) {
    int alive = 0;
    auto* const object = new support::CountedObject(alive);
    IUnknown* const unknown = asUnknown(*object);
    EXPECT_EQ(unknown->AddRef(), 1u);
    void* out = nullptr;
    EXPECT_EQ(unknown->QueryInterface(IID_IUnknown, &out), S_OK);
    EXPECT_EQ(out, unknown);
    EXPECT_EQ(object->GetRefCount(), 2u);
    EXPECT_EQ(unknown->QueryInterface(IID_IStream, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(unknown->Release(), 1u);
    EXPECT_EQ(unknown->Release(), 0u);
    EXPECT_EQ(alive, 0);
}

TEST_F(ComponentRuntimeTest, GlobalTableHoldsHandsOutAndReleasesAnObject) {
    IGlobalInterfaceTable* table = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IGlobalInterfaceTable, reinterpret_cast<void**>(&table)),
              S_OK);
    int alive = 0;
    {
        const qv::Reference<support::CountedObject> object(new support::CountedObject(alive));
        DWORD cookie = 0;
        ASSERT_EQ(table->RegisterInterfaceInGlobal(asUnknown(*object), IID_IUnknown, &cookie),
                  S_OK);
        EXPECT_GT(object->GetRefCount(), 1u) << "the runtime holds it";
        void* out = nullptr;
        ASSERT_EQ(table->GetInterfaceFromGlobal(cookie, IID_IUnknown, &out), S_OK);
        static_cast<IUnknown*>(out)->Release();
        EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
        EXPECT_EQ(object->GetRefCount(), 1u) << "the runtime gave back what it took";
    }
    EXPECT_EQ(alive, 0);
    table->Release();
}

TEST_F(ComponentRuntimeTest, ExternalLockHoldsAnObject) {
    int alive = 0;
    {
        const qv::Reference<support::CountedObject> object(new support::CountedObject(alive));
        ASSERT_EQ(CoLockObjectExternal(asUnknown(*object), TRUE, TRUE), S_OK);
        EXPECT_GT(object->GetRefCount(), 1u);
        ASSERT_EQ(CoLockObjectExternal(asUnknown(*object), FALSE, TRUE), S_OK);
        EXPECT_EQ(CoDisconnectObject(asUnknown(*object), 0), S_OK);
        EXPECT_EQ(object->GetRefCount(), 1u);
    }
    EXPECT_EQ(alive, 0);
}

TEST_F(ComponentRuntimeTest, StringIsACharacterBufferBehindTheUnknownInterface) {
    const qv::Reference<qv::String> text(new qv::String(u"across the boundary"));
    IUnknown* const unknown = asUnknown(*text);
    IQVCharBuffer* buffer = nullptr;
    ASSERT_EQ(unknown->QueryInterface(IID_IQVCharBuffer, reinterpret_cast<void**>(&buffer)), S_OK);
    EXPECT_EQ(buffer->GetLength(), 19);
    EXPECT_EQ(buffer->Release(), 1u);
}

} // namespace
