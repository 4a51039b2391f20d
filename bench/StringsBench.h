#pragma once

#include <string>

/// The inputs of the string benchmarks, the same for the library and its peers.
namespace bench {

inline constexpr int longLength = 65536;

inline const std::u16string& sentence() {
    static const std::u16string text(u"All human beings are born free and equal in dignity.");
    return text;
}

/// 64 Ki units in which the needle stands only at the end.
inline const std::u16string& haystack() {
    static const std::u16string text = [] {
        std::u16string units;
        while (units.size() < static_cast<std::size_t>(longLength)) {
            units += sentence();
        }
        units.resize(static_cast<std::size_t>(longLength) - 6);
        units += u"needle";
        return units;
    }();
    return text;
}

inline const std::u16string& needle() {
    static const std::u16string text(u"needle");
    return text;
}

} // namespace bench
