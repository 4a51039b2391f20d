// Appends a line to a file that other processes append to at the same time. Each line stays whole,
// and the file is open only while it is written, so that it may be renamed meanwhile.

#include "qv/Exceptions.h"
#include "qv/io/FileOutputStream.h"

#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    using Stream = qv::io::FileOutputStream;
    const char* const line = argc > 1 ? argv[1] : "a line\n";
    try {
        const qv::String path = qv::util::FilePath::getTempDir() + qv::String(u"qvcl-shared.log");
        Stream log(path, Stream::APPEND | Stream::LOCK | Stream::KEEPCLOSED);
        log.write(line, static_cast<std::int32_t>(std::strlen(line)));
        std::printf("%s has %lld bytes\n", path.getBytes(), static_cast<long long>(log.getSize()));
        return 0;
    } catch (const qv::Exception& exception) {
        std::fprintf(stderr, "failed with result %08X\n",
                     static_cast<unsigned>(exception.getResult()));
        return 1;
    }
}
