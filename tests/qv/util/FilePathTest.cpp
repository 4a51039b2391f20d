#include "qv/util/FilePath.h"

#include "qv/Exceptions.h"
#include "qv/Results.h"
#include "qv/util/PathNormalizer.h"
#include "tests/support/Printing.h"
#include "tests/support/Throws.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace qv;
using namespace qv::util;

namespace {

struct Normalized {
    const char16_t* text;
    const char16_t* result; // with slashes
};

class PathNormalizerTest : public testing::TestWithParam<Normalized> {};

String withSlash(const char16_t* text, char16_t slash) {
    String result(text);
    result.translate(u'/', slash);
    return result;
}

TEST_P(PathNormalizerTest, CleansForEachSeparator) {
    const Normalized& row = GetParam();
    for (const auto type : {PathNormalizer::SLASH_NATIVE, PathNormalizer::SLASH_FORWARD,
                            PathNormalizer::SLASH_BACK}) {
        const char16_t slash = type == PathNormalizer::SLASH_FORWARD ? u'/' : u'\\';
        PathNormalizer normalizer(type);
        EXPECT_EQ(normalizer.normalize(withSlash(row.text, u'/')), withSlash(row.result, slash));
        EXPECT_EQ(normalizer.normalize(withSlash(row.text, u'\\')), withSlash(row.result, slash))
            << "one normalizer serves many texts";
    }
}

const Normalized normalized[] = {
    {u"", u""},
    {u"a", u"a"},
    {u"a/./b", u"a/b"},
    {u"a//b", u"a/b"},
    {u"a///b", u"a/b"},
    {u"a/b/../c", u"a/c"},
    {u"a/../b", u"b"},
    {u"../a", u"../a"},
    {u"./a", u"a"},
    {u"././a", u"a"},
    {u"a/", u"a/"},
    {u"a//", u"a/"},
    {u"a/.", u"a/"},
    {u"a/./", u"a/"},
    {u"a/b/..", u"a/"},
    {u"a/b/../", u"a/"},
    {u"a/..", u""},
    {u".", u"."},
    {u"./", u"./"},
    {u"./.", u"./"},
    {u"././", u"./"},
    {u"..", u".."},
    {u"../", u"../"},
    {u"../..", u"../.."},
    {u"../../a", u"../../a"},
    {u"/", u"/"},
    {u"/a", u"/a"},
    {u"//a", u"/a"},
    {u"/a/../b", u"b"},
    {u"/a/b/../../c", u"c"},
    {u"/./a", u"/a"},
    {u"...", u"..."},
    {u"..a", u"..a"},
    {u".a", u".a"},
    {u"a/...", u"a/..."},
    {u"a/..b", u"a/..b"},
    {u"a/.b", u"a/.b"},
    {u"a.b/c.d", u"a.b/c.d"},
    {u"a/b/c/../../d", u"a/d"},
    {u"\u00E9/../\u4E2D", u"\u4E2D"},
    {u"../.", u"../"},
    {u"a/../../b", u"../b"},
    {u"a/../.", u"./"},
    {u"a/../..", u".."},
    {u"a/../../..", u"../.."},
    {u"a/b/../..", u""},
    {u".././", u".././"},
    {u".././a", u"../a"},
    {u"..//a", u"../a"},
    {u".//a", u"a"},
    {u"../.a", u"../.a"},
    {u"../..a", u"../..a"},
    {u"./..", u".."},
    {u"./../a", u"../a"},
    {u"/.", u"/"},
    {u"/..", u""},
    {u"/../", u""},
    {u"/../a", u"a"},
    {u"/a/..", u"/"},
    {u"/.a", u"/.a"},
    {u"/..a", u"/..a"},
    {u"/...", u"/..."},
};
INSTANTIATE_TEST_SUITE_P(Table, PathNormalizerTest, testing::ValuesIn(normalized));

TEST(PathNormalizerTypeTest, OtherTypesAreRefused) {
    const auto bad = static_cast<PathNormalizer::SLASH_TYPE>(3);
    EXPECT_EQ(support::thrownText<Exception>([&] { PathNormalizer normalizer(bad); }),
              "Invalid slash type specified.");
    PathNormalizer normalizer;
    EXPECT_EQ(support::thrownText<Exception>([&] { normalizer.setSlashType(bad); }),
              "Invalid slash type specified.");
    EXPECT_EQ(normalizer.normalize(u"a/b"), u"a\\b");
    normalizer.setSlashType(PathNormalizer::SLASH_FORWARD);
    EXPECT_EQ(normalizer.normalize(u"a\\b"), u"a/b");
}

TEST(PathNormalizerTypeTest, NulInsideATextIsAUnitLikeAnyOther) {
    EXPECT_EQ(PathNormalizer().normalize(String(u"a\0b/../c", 8)), u"c");
    EXPECT_EQ(PathNormalizer().normalize(String(u"x/a\0b", 5)), String(u"x\\a\0b", 5));
}

// --- FilePath ---

static_assert(std::is_base_of_v<CopyObject, FilePath>);

/// Shows what only subclasses see.
struct OpenPath : FilePath {
    using FilePath::s_UNCLead;
};

struct Parts {
    const char16_t* text;
    const char16_t* path;
    int root;
    bool unc;
    const char16_t* drive;
    const char16_t* directory;
    const char16_t* name;
    const char16_t* baseName;
    const char16_t* extension;
    const char16_t* parent;
};

class FilePathPartsTest : public testing::TestWithParam<Parts> {};

TEST_P(FilePathPartsTest, FallsIntoItsParts) {
    const Parts& row = GetParam();
    const FilePath path{String(row.text)};
    EXPECT_EQ(path.getPath(), row.path);
    EXPECT_EQ(path.getRootLength(), row.root);
    EXPECT_EQ(path.isAbsolutePath(), row.root > 0);
    EXPECT_EQ(path.isUNCPath(), row.unc);
    EXPECT_EQ(path.getDrive(), row.drive);
    EXPECT_EQ(path.getDirectory(), row.directory);
    EXPECT_EQ(path.getName(), row.name);
    EXPECT_EQ(path.getBaseName(), row.baseName);
    EXPECT_EQ(path.getExtension(), row.extension);
    EXPECT_EQ(path.getParentPath(), row.parent);
}

const Parts parts[] = {
    {u"", u"", 0, false, u"", u"", u"", u"", u"", u""},
    {u"a", u"a", 0, false, u"", u"", u"a", u"a", u"", u""},
    {u"C:\\a", u"C:\\a", 3, false, u"C:", u"C:\\", u"a", u"a", u"", u"C:\\"},
    {u"C:a", u"C:a", 2, false, u"C:", u"C:", u"a", u"a", u"", u"C:"},
    {u"C:", u"C:", 2, false, u"C:", u"C:", u"", u"", u"", u""},
    {u"C:/", u"C:\\", 3, false, u"C:", u"C:\\", u"", u"", u"", u""},
    {u"\\a", u"\\a", 1, false, u"", u"\\", u"a", u"a", u"", u"\\"},
    {u"/a/b.c", u"\\a\\b.c", 1, false, u"", u"\\a", u"b.c", u"b", u".c", u"\\a"},
    {u"\\\\s\\h\\a", u"\\\\s\\h\\a", 6, true, u"\\\\s\\h", u"\\\\s\\h\\", u"a", u"a", u"",
     u"\\\\s\\h\\"},
    {u"\\\\s\\h", u"\\\\s\\h", 5, true, u"\\\\s\\h", u"\\\\s\\h", u"", u"", u"", u""},
    {u"\\\\s\\h.x", u"\\\\s\\h.x", 7, true, u"\\\\s\\h.x", u"\\\\s\\h.x", u"", u"", u"", u""},
    {u"\\\\s\\h.x\\a", u"\\\\s\\h.x\\a", 8, true, u"\\\\s\\h.x", u"\\\\s\\h.x\\", u"a", u"a", u"",
     u"\\\\s\\h.x\\"},
    {u"//s/h.x/a/../bc", u"\\\\s\\h.xbc", 8, true, u"\\\\s\\h.xb", u"\\\\s\\h.xb", u"c", u"c", u"",
     u"\\\\s\\h.xb"},
    {u"//s/h/a/../b", u"\\\\s\\hb", 6, true, u"\\\\s\\hb", u"\\\\s\\hb", u"", u"", u"", u""},
    {u"\\\\", u"\\", 1, false, u"", u"\\", u"", u"", u"", u""},
    {u"a.b\\c", u"a.b\\c", 0, false, u"", u"a.b", u"c", u"c", u"", u"a.b"},
    {u"c.d.e", u"c.d.e", 0, false, u"", u"", u"c.d.e", u"c.d", u".e", u""},
    {u".e", u".e", 0, false, u"", u"", u".e", u"", u".e", u""},
    {u":x", u":x", 0, false, u"", u"", u":x", u":x", u"", u""},
    {u":a:b", u":a:b", 0, false, u"", u"", u":a:b", u":a:b", u"", u""},
    {u"C:a:b", u"C:a:b", 2, false, u"C:", u"C:", u"a:b", u"a:b", u"", u"C:"},
    {u"a/b/../c", u"a\\c", 0, false, u"", u"a", u"c", u"c", u"", u"a"},
    {u"dir/", u"dir\\", 0, false, u"", u"dir", u"", u"", u"", u"dir"},
    {u"C:\\a\\..\\", u"C:", 3, false, u"C:", u"C:", u"", u"", u"", u""},
    {u"\\a\\..\\", u"", 1, false, u"", u"", u"", u"", u"", u""},
    {u"C:\\x.y\\", u"C:\\x.y\\", 3, false, u"C:", u"C:\\x.y", u"", u"", u"", u"C:\\x.y"},
};
INSTANTIATE_TEST_SUITE_P(Table, FilePathPartsTest, testing::ValuesIn(parts));

TEST(FilePathTest, PoppedLeadingSeparatorLeavesTheRootLength) {
    const FilePath path{String(u"C:\\a\\..\\b")};
    EXPECT_EQ(path.getPath(), u"C:b");
    EXPECT_EQ(path.getRootLength(), 3);
}

TEST(FilePathTest, BadRootsAreRefused) {
    const auto thrown = [](const char16_t* text) {
        return support::thrownText<InvalidPathException>([&] { FilePath path{String(text)}; });
    };
    EXPECT_EQ(thrown(u"ab:c"), "invalid drive");
    EXPECT_EQ(thrown(u"a/b:c"), "invalid drive");
    EXPECT_EQ(thrown(u"\\\\\\a"), "no server name");
    EXPECT_EQ(thrown(u"\\\\a"), "no share name");
    EXPECT_EQ(thrown(u"\\\\a\\"), "no share name");
    EXPECT_EQ(thrown(u"\\\\a\\\\b"), "no share name");
    EXPECT_EQ(thrown(u"//a"), "no share name");
}

TEST(FilePathTest, DelimitersAreFixed) {
    EXPECT_EQ(FilePath::dirDelim, u'\\');
    EXPECT_EQ(FilePath::pathDelim, u';');
    EXPECT_EQ(String(OpenPath::s_UNCLead), u"\\\\");
    EXPECT_EQ(OpenPath::s_UNCLead.length, 2);
}

TEST(FilePathTest, ChildPathIsAlwaysEmpty) { EXPECT_EQ(FilePath(u"a").getChildPath(u"b"), u""); }

TEST(FilePathTest, AbsolutePathStandsBehindTheCurrentDirectory) {
    const String current = FilePath::getCurrentDir();
    EXPECT_TRUE(current.endsWith(u"\\"));
    EXPECT_TRUE(FilePath(current).isAbsolutePath());
    EXPECT_EQ(FilePath(u"a/../b").getAbsolutePath(), current + String(u"b"));
    EXPECT_EQ(FilePath(u".").getAbsolutePath(), current) << "the whole is cleaned";
    EXPECT_EQ(FilePath(u"..\\x").getAbsolutePath(), FilePath(current + u"..\\x").getPath());
    EXPECT_EQ(FilePath(u"/x").getAbsolutePath(), u"\\x");
    EXPECT_EQ(FilePath(u"C:a").getAbsolutePath(), u"C:a") << "a drive counts as absolute";
    EXPECT_EQ(FilePath(u"C:\\a").getAbsolutePath(), u"C:\\a");
    EXPECT_EQ(FilePath(u"\\\\s\\h\\x").getAbsolutePath(), u"\\\\s\\h\\x");
}

TEST(FilePathTest, CurrentDirectoryThatIsARootHasOneSeparator) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(before.root_path());
    const String current = FilePath::getCurrentDir();
    std::filesystem::current_path(before);
    EXPECT_TRUE(current.endsWith(u"\\"));
    EXPECT_FALSE(current.endsWith(u"\\\\"));
    EXPECT_EQ(FilePath(current).getRootLength(), current.getLength());
}

TEST(FilePathTest, CanonicalPathIsExpanded) {
    EXPECT_EQ(FilePath(u"b").getCanonicalPath(), FilePath(u"b").getAbsolutePath());
    EXPECT_EQ(FilePath(u"\\\\s\\h\\x").getCanonicalPath(), u"\\\\s\\h\\x");
    EXPECT_EQ(FilePath(u"").getCanonicalPath(), u"");
}

TEST(FilePathTest, CanonicalPathHasItsLimits) {
    const FilePath longPath{String(u'x', 300)};
    EXPECT_EQ(support::thrownResult([&] { longPath.getCanonicalPath(); }), QV_E_PATHTOOLONG);
    const FilePath withNul{String(u"a\0b", 3)};
    EXPECT_EQ(support::thrownResult([&] { withNul.getCanonicalPath(); }), QV_E_INVALIDNAME);
}

TEST(FilePathTest, CanonicalPathTakesAsMuchAsFits) {
    // Names that are not too long for a file system, up to the length wanted.
    const auto ofLength = [](int length) {
        String path = FilePath::getCurrentDir();
        while (path.getLength() < length) {
            const bool endsName = path.getLength() % 10 == 0 && path.getLength() + 1 < length;
            path.append(endsName && !path.endsWith(u"\\") ? u'\\' : u'x');
        }
        return FilePath{path};
    };
    const FilePath longest = ofLength(260);
    ASSERT_EQ(longest.getPath().getLength(), 260);
    EXPECT_EQ(longest.getCanonicalPath(), longest.getPath());
    const FilePath tooLong = ofLength(261);
    ASSERT_EQ(tooLong.getPath().getLength(), 261);
    EXPECT_EQ(support::thrownResult([&] { tooLong.getCanonicalPath(); }), QV_E_PATHTOOLONG);
}

TEST(FilePathTest, TemporaryDirectoryEndsInASeparator) {
    const String directory = FilePath::getTempDir();
    EXPECT_TRUE(directory.endsWith(u"\\"));
    EXPECT_TRUE(FilePath(directory).isAbsolutePath());
}

TEST(FilePathTest, CopiesAreValues) {
    FilePath path{String(u"C:\\a")};
    FilePath copy(path);
    EXPECT_EQ(copy.getPath(), u"C:\\a");
    EXPECT_EQ(copy.getRootLength(), 3);
    copy = FilePath(u"b");
    EXPECT_EQ(copy.getPath(), u"b");
    EXPECT_EQ(copy.getRootLength(), 0);
    EXPECT_EQ(path.getPath(), u"C:\\a");
}

} // namespace
