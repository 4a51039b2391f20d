#include "qvcore/Component.h"

#include "tests/qvcore/Results.h"

#include <gtest/gtest.h>
#include <objbase.h>
#include <thread>

using namespace support;

namespace {

/// The system's table of global interfaces, a class that every system has.
constexpr GUID systemClass = {0x00000323, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID unknownInterface = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

std::int32_t createAndRelease() {
    void* out = nullptr;
    const std::int32_t result =
        QVModuleComCreateObject(0, &systemClass, nullptr, &unknownInterface, &out);
    if (result == 0) {
        static_cast<IUnknown*>(out)->Release();
    }
    return result;
}

/// A class in the registry for the length of a test.
class RegisteredClass {
public:
    RegisteredClass() {
        const wchar_t text[] = L"{00000323-0000-0000-C000-000000000046}";
        RegCreateKeyExW(HKEY_CLASSES_ROOT, L"Test.System.1\\CLSID", 0, nullptr, 0, KEY_WRITE,
                        nullptr, &key_, nullptr);
        RegSetValueExW(key_, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof text);
        RegCloseKey(key_);
    }
    ~RegisteredClass() {
        RegDeleteKeyW(HKEY_CLASSES_ROOT, L"Test.System.1\\CLSID");
        RegDeleteKeyW(HKEY_CLASSES_ROOT, L"Test.System.1");
    }

private:
    HKEY key_ = nullptr;
};

} // namespace

TEST(WindowsComponentTest, IsFoundInTheRegistry) {
    GUID found = {};
    EXPECT_EQ(QVComClassIDFromProgID(u"Test.System.1", &found), unknownProgId);
    const RegisteredClass registered;
    EXPECT_EQ(QVComClassIDFromProgID(u"Test.System.1", &found), 0);
    EXPECT_EQ(QVComCompareGUID(&found, &systemClass), 0);
    EXPECT_EQ(QVComClassIDFromProgID(u"test.SYSTEM.1", &found), 0);
}

TEST(WindowsComponentThreadsTest, IsCreatedInAThreadWithoutAnApartment) {
    std::int32_t result = 1;
    std::thread([&result] { result = createAndRelease(); }).join();
    EXPECT_EQ(result, 0);
}

TEST(WindowsComponentThreadsTest, LeavesAThreadInItsApartment) {
    std::thread([] {
        ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        EXPECT_EQ(createAndRelease(), 0);
        APTTYPE type = APTTYPE_CURRENT;
        APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
        EXPECT_EQ(CoGetApartmentType(&type, &qualifier), S_OK);
        EXPECT_TRUE(type == APTTYPE_STA || type == APTTYPE_MAINSTA);
        CoUninitialize();
    }).join();
}
