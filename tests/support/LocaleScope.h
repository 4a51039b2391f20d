#pragma once

#include <clocale>
#include <string>

namespace support {

/// Sets one category of the runtime locale for a scope.
class LocaleScope {
public:
    LocaleScope(int category, const char* name)
        : category_(category), old_(std::setlocale(category, nullptr)) {
        std::setlocale(category, name);
    }
    ~LocaleScope() { std::setlocale(category_, old_.c_str()); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    int category_;
    std::string old_;
};

} // namespace support
