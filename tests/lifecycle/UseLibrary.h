#pragma once

#include "qv/Class.h"
#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "tests/lifecycle/Check.h"
#include "tests/support/UniqueName.h"

#include <cstdio>
#include <filesystem>
#include <string>

/// False behind the library's end, which it says by an exception of its own.
inline bool libraryIsUp() {
    try {
        return qv::Class::forName(u"CQVString") != nullptr;
    } catch (const qv::IllegalStateException&) {
        return false;
    }
}

/// Uses what a program uses: strings, converters, run-time classes and file streams.
inline void useLibrary(const char* who) {
    qv::String text(u"d\u00E9j\u00E0 vu ");
    text.append(u"\u4E2D").toUpper();
    CHECK(std::string(text.getBytes(u"UTF-8")) == "D\xC3\x89J\xC3\x80 VU \xE4\xB8\xAD");
    CHECK(qv::String(reinterpret_cast<const signed char*>("\x80"), 1, u"CP1252") == u"\u20AC");

    const qv::Reference<qv::Object> made(qv::Class::forName(u"CQVString")->createInstance());
    CHECK(made->toString().isEmpty());
    CHECK(text.getClass() == made->getClass());
    try {
        qv::Class::forName(u"no such class");
        CHECK(false);
    } catch (const qv::ClassNotFoundException& exception) {
        CHECK(exception.getDescription() == u"no such class");
    }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / (support::uniqueName() + who);
    const qv::String name(path.u16string().c_str());
    {
        qv::io::FileOutputStream out(name, qv::io::FileOutputStream::TRUNC |
                                               qv::io::FileOutputStream::LOCK);
        out.write("abc", 3);
    }
    {
        qv::io::FileInputStream in(name);
        char bytes[4] = {};
        CHECK(in.read(bytes, 3) == 3);
        CHECK(std::string(bytes) == "abc");
    }
    std::filesystem::remove(path);
}
