#pragma once

#include "qv/CopyObject.h"
#include "qv/String.h"

namespace qv::util {

/// A path as a value: its text, cleaned, and how much of it is the root.
///
/// The library's text form follows the Windows conventions on every system: the separator is a
/// backslash (a slash is taken for one), a drive is one letter and a colon, `\\server\share` is a
/// network root. Where the system has no drives, an absolute path starts with a backslash. The file
/// system is not asked.
///
/// Thread safety: const-safe.
class QV_API FilePath : public CopyObject {
public:
    /// Between the parts of a path.
    static const char16_t dirDelim = u'\\';
    /// Between the paths of a list.
    static const char16_t pathDelim = u';';

    /// @throws InvalidPathException "invalid drive" for a colon behind more than one letter, "no
    /// server
    ///     name" or "no share name" for an incomplete network root.
    explicit FilePath(const String& path);

    /// The text as it was cleaned.
    const String& getPath() const noexcept { return path_; }
    /// How many units at its start are the root. Kept: a `..` that reaches the root's separator
    /// takes it away and leaves this length, which then may go beyond the root, or the text.
    int getRootLength() const noexcept { return rootLength_; }

    /// True for any root: `C:a` counts as absolute.
    bool isAbsolutePath() const;
    /// True for a network root.
    bool isUNCPath() const;
    /// The text, behind the current directory where it is relative.
    String getAbsolutePath() const;
    /// The path as the system expands it; a network path is given as it stands.
    /// @throws ResultException with the platform's result, also for more than 260 units.
    String getCanonicalPath() const;
    /// The root without the separator at its end.
    String getDrive() const;
    /// What stands before the last separator, at least the root.
    String getDirectory() const;
    /// What follows the last separator.
    String getName() const;
    /// The name up to its last dot.
    String getBaseName() const;
    /// The name from its last dot on, dot included.
    String getExtension() const;
    /// What stands before the last separator, or the root of what stands in it; empty for a root
    /// and for a single name.
    String getParentPath() const;
    /// Kept: always the empty text; nothing is joined.
    String getChildPath(const char16_t* name) const;

    /// With a separator at its end. @throws ResultException with the platform's result.
    static String getCurrentDir();
    /// With a separator at its end. @throws ResultException with the platform's result.
    static String getTempDir();

protected:
    static const STRUCT_QV_STR_LIT_INFO s_UNCLead;

    /// Works out the root and cleans the rest.
    void normalize();

private:
    int networkRootLength() const;
    int nameStart() const;

    String path_;
    int rootLength_ = 0;
};

} // namespace qv::util
