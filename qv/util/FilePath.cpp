#include "qv/util/FilePath.h"

#include "qv/ErrorRule.h"
#include "qv/Exceptions.h"
#include "qv/util/PathNormalizer.h"
#include "qvcore/Path.h"

#include <algorithm>

namespace qv::util {

namespace {

constexpr char16_t separator[] = {FilePath::dirDelim, 0};
constexpr int driveLength = 2;     // a letter and a colon
constexpr int networkLead = 2;     // two separators
constexpr int canonicalSize = 261; // units, terminator included
constexpr int systemPathSize = 32768;

/// The path that a platform call writes. @throws ResultException with its result.
template <class Call>
String pathFrom(Call call, int capacity) {
    String path;
    char16_t* const buffer = path.getWriteLock(capacity);
    const std::int32_t result = call(buffer, capacity);
    path.releaseWriteLock(result < 0 ? 0 : -1);
    throwIfFailed(result);
    return path;
}

} // namespace

const char16_t FilePath::dirDelim;
const char16_t FilePath::pathDelim;
const STRUCT_QV_STR_LIT_INFO FilePath::s_UNCLead = {u"\\\\", networkLead};

FilePath::FilePath(const String& path) : path_(path) { normalize(); }

void FilePath::normalize() {
    rootLength_ = 0;
    path_.translate(u'/', dirDelim);
    const int colon = path_.indexOf(u':');
    if (colon > 0) {
        if (colon != driveLength - 1) {
            throw InvalidPathException(u"invalid drive");
        }
        rootLength_ = driveLength;
    } else if (path_.getLength() > networkLead && isUNCPath()) {
        rootLength_ = networkRootLength();
    }
    const int start = rootLength_;
    if (start < path_.getLength() && path_[start] == dirDelim) {
        ++rootLength_;
    }
    path_.replace(start, -1, PathNormalizer().normalize(path_.substring(start)));
}

/// Server and share, up to the share's end.
int FilePath::networkRootLength() const {
    const int serverEnd = path_.indexOf(dirDelim, networkLead);
    if (serverEnd == networkLead) {
        throw InvalidPathException(u"no server name");
    }
    const int shareStart = serverEnd + 1;
    if (serverEnd < 0 || shareStart == path_.getLength() || path_[shareStart] == dirDelim) {
        throw InvalidPathException(u"no share name");
    }
    const int shareEnd = path_.indexOf(dirDelim, shareStart);
    return shareEnd < 0 ? path_.getLength() : shareEnd;
}

bool FilePath::isAbsolutePath() const { return rootLength_ > 0; }

bool FilePath::isUNCPath() const { return path_.startsWith(s_UNCLead.text, s_UNCLead.length); }

String FilePath::getAbsolutePath() const {
    return isAbsolutePath() ? path_ : FilePath(getCurrentDir().append(path_)).path_;
}

String FilePath::getCanonicalPath() const {
    if (isUNCPath() || path_.isEmpty()) {
        return path_;
    }
    if (path_.indexOf(u'\0') >= 0) {
        throwResult(QV_E_INVALIDNAME); // the platform's texts end at a terminator
    }
    return pathFrom(
        [this](char16_t* buffer, int capacity) {
            return QVPathExpand(path_.getData(), buffer, capacity);
        },
        canonicalSize);
}

String FilePath::getDrive() const {
    const String root = path_.substring(0, rootLength_);
    return root.endsWith(separator) ? root.substring(0, rootLength_ - 1) : root;
}

String FilePath::getDirectory() const {
    return path_.substring(0, std::max(path_.lastIndexOf(dirDelim), rootLength_));
}

int FilePath::nameStart() const { return std::max(path_.lastIndexOf(dirDelim) + 1, rootLength_); }

String FilePath::getName() const { return path_.substring(nameStart()); }

String FilePath::getBaseName() const {
    const int dot = path_.lastIndexOf(u'.');
    return path_.substring(nameStart(), dot < nameStart() ? -1 : dot);
}

String FilePath::getExtension() const {
    const int dot = path_.lastIndexOf(u'.');
    return dot < nameStart() ? String() : path_.substring(dot);
}

String FilePath::getParentPath() const {
    const int separator = path_.lastIndexOf(dirDelim);
    if (separator >= rootLength_) {
        return path_.substring(0, separator);
    }
    return path_.getLength() > rootLength_ ? path_.substring(0, rootLength_) : String();
}

String FilePath::getChildPath(const char16_t*) const { return String(); }

String FilePath::getCurrentDir() {
    String directory = pathFrom(&QVPathGetCurrentDirectory, systemPathSize);
    directory.freeExtra();
    return directory.endsWith(separator) ? directory : directory.append(dirDelim);
}

String FilePath::getTempDir() {
    String directory = pathFrom(&QVPathGetTempDirectory, systemPathSize);
    directory.freeExtra();
    return directory;
}

} // namespace qv::util
