#include "bench/ConvertersBench.h"

#include <iconv.h>
#include <stdexcept>

/// The system's own converter.
namespace bench {

namespace {

template <class Out>
std::size_t convert(const char* to, const char* from, std::string_view input, Out& out) {
    const iconv_t converter = iconv_open(to, from);
    char* in = const_cast<char*>(input.data());
    std::size_t inLeft = input.size();
    char* outStart = reinterpret_cast<char*>(out.data());
    std::size_t outLeft = out.size() * sizeof out[0];
    for (std::size_t before = 0; inLeft != before;) {
        before = inLeft;
        iconv(converter, &in, &inLeft, &outStart, &outLeft); // stops behind what has no form
    }
    iconv_close(converter);
    if (inLeft != 0) {
        throw std::runtime_error("iconv");
    }
    return out.size() - outLeft / sizeof out[0];
}

std::string_view asBytes(std::u16string_view units) {
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof units[0]};
}

[[maybe_unused]] const bool isRegistered = [] {
    for (const char* name : {"UTF-8", "UTF-16BE", "UTF-32LE", "CP1252", "CP437"}) {
        measure(
            name, "iconv",
            [name](std::string_view bytes, std::u16string& out) {
                return convert("UTF-16LE", name, bytes, out);
            },
            [name](std::u16string_view units, std::string& out) {
                const std::string to = std::string(name) + "//IGNORE"; // what has no form
                return convert(to.c_str(), "UTF-16LE", asBytes(units), out);
            });
    }
    return true;
}();

} // namespace

} // namespace bench
