#include "Files.h"

#include "qv/Exceptions.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"

#include <filesystem>
#include <type_traits>

namespace tool {

using qv::Reference;
using qv::String;
using namespace qv::io;

namespace {

/// A path as the language's own library takes it.
std::filesystem::path systemPath(String text) {
    if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
        text.translate(u'\\', u'/');
        return text.getBytes();
    } else {
        return text.getData();
    }
}

} // namespace

Reference<InputStream> openInput(const std::optional<String>& path) {
    return path ? Reference<InputStream>(qv::make<FileInputStream>(*path))
                : Reference<InputStream>(FileInputStream::standardInput());
}

Reference<OutputStream> openOutput(const std::optional<String>& path) {
    return path ? Reference<OutputStream>(qv::make<FileOutputStream>(*path, false))
                : Reference<OutputStream>(FileOutputStream::standardOutput());
}

void refuseSameFile(const std::optional<String>& in, const std::optional<String>& out) {
    std::error_code notThere; // a file that is not there yet is no other
    if (in && out && std::filesystem::equivalent(systemPath(*in), systemPath(*out), notThere)) {
        throw qv::Exception(u"input and output are the same file");
    }
}

} // namespace tool
