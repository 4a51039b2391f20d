#include "qvcore/Path.h"

#include "tests/qvcore/Results.h"
#include "tests/support/TestFolder.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace support;

namespace {

struct Row {
    const char16_t* text;
    const char16_t* expanded;
};

/// Changes an environment variable for as long as the object lives.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name) {
        const char* previous = std::getenv(name);
        hadValue_ = previous != nullptr;
        previous_ = hadValue_ ? previous : "";
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Variable() { hadValue_ ? setenv(name_, previous_.c_str(), 1) : unsetenv(name_); }

private:
    const char* name_;
    std::string previous_;
    bool hadValue_;
};

std::u16string tempDirectory() {
    std::array<char16_t, 300> area = {};
    EXPECT_EQ(QVPathGetTempDirectory(area.data(), 300), 0);
    return area.data();
}

std::int32_t currentDirectoryIn(const std::filesystem::path& path) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::create_directory(path);
    std::filesystem::current_path(path);
    std::array<char16_t, 300> area = {};
    const std::int32_t result = QVPathGetCurrentDirectory(area.data(), 300);
    std::filesystem::current_path(before);
    return result;
}

} // namespace

class PosixPathExpandTest : public testing::TestWithParam<Row> {};

TEST_P(PosixPathExpandTest, RemovesPartsFromAnAbsolutePath) {
    std::array<char16_t, 100> area = {};
    EXPECT_EQ(QVPathExpand(GetParam().text, area.data(), 100), 0);
    EXPECT_EQ(std::u16string(area.data()), GetParam().expanded);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, PosixPathExpandTest,
    testing::Values(Row{u"\\", u"\\"}, Row{u"/", u"\\"}, Row{u"\\a", u"\\a"}, Row{u"/a", u"\\a"},
                    Row{u"\\a\\", u"\\a\\"}, Row{u"\\a\\.\\b", u"\\a\\b"},
                    Row{u"\\a\\\\b", u"\\a\\b"}, Row{u"\\\\s\\h", u"\\s\\h"},
                    Row{u"\\a\\..\\b", u"\\b"}, Row{u"\\a\\..", u"\\"}, Row{u"\\..", u"\\"},
                    Row{u"\\..\\..\\a", u"\\a"}, Row{u"\\a\\b\\..\\..\\..\\c", u"\\c"},
                    Row{u"\\a\\.", u"\\a"}, Row{u"\\a\\..\\", u"\\"}, Row{u"\\...", u"\\..."},
                    Row{u"\\..a", u"\\..a"}, Row{u"\\C:\\a", u"\\C:\\a"}));

TEST(PosixPathTest, RefusesATextThatTheSystemCannotSpell) {
    char16_t unit = u'#';
    EXPECT_EQ(QVPathExpand(u"\\a\xD800", &unit, 1), invalidName);
    EXPECT_EQ(unit, u'#');
}

TEST(PosixPathTest, RefusesADirectoryThatTheTextFormCannotSpell) {
    const TestFolder folder;
    EXPECT_EQ(currentDirectoryIn(folder.path() / "back\\slash"), invalidName);
    EXPECT_EQ(currentDirectoryIn(folder.path() / "bad\xFF"), invalidName);
    EXPECT_EQ(currentDirectoryIn(folder.path() / "good"), 0);
}

TEST(PosixPathTest, HasNoCurrentDirectoryWhenItWasRemoved) {
    const TestFolder folder;
    const std::filesystem::path before = std::filesystem::current_path();
    const std::filesystem::path path = folder.path() / "gone";
    std::filesystem::create_directory(path);
    std::filesystem::current_path(path);
    std::filesystem::remove(path);
    std::array<char16_t, 300> area = {};
    EXPECT_EQ(QVPathGetCurrentDirectory(area.data(), 300), fileNotFound);
    EXPECT_EQ(QVPathExpand(u"a", area.data(), 300), fileNotFound);
    EXPECT_EQ(QVPathExpand(u"\\a", area.data(), 300), 0);
    std::filesystem::current_path(before);
}

TEST(PosixPathTest, TakesTheTemporaryDirectoryFromTheEnvironment) {
    {
        const Variable variable("TMPDIR", "/some/where");
        EXPECT_EQ(tempDirectory(), u"\\some\\where\\");
    }
    {
        const Variable variable("TMPDIR", "/some/where/");
        EXPECT_EQ(tempDirectory(), u"\\some\\where\\");
    }
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Variable variable("TMPDIR", value);
        EXPECT_EQ(tempDirectory(), u"\\tmp\\");
    }
}
