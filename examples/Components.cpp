// The two faces of one object: a text is filled through its component interface, and read natively.

#include "qv/Class.h"
#include "qv/String.h"

#include <cstdio>

/// What a component in another module would do with the buffer that it is handed.
static std::int32_t tellName(IQVCharBuffer* out) {
    char16_t* units = nullptr;
    const std::int32_t result = out->GetWriteLock(5, &units);
    if (result < 0) {
        return result;
    }
    for (int i = 0; i < 5; ++i) {
        units[i] = u"world"[i];
    }
    return out->ReleaseWriteLock(5);
}

int main() {
    qv::String name;
    if (tellName(&name) < 0) {
        return 1;
    }
    qv::String text;
    text.format(u"hello {0}, I am a {1}", -1, name.getData(), text.getClass()->getName());
    std::puts(text.getBytes());
    return 0;
}
