// qv::String and qv::Str1 beside the language's own string; Qt's and ICU's are in peers/.

#include "StringsBench.h"

#include "qv/Str1.h"
#include "qv/String.h"

#include <benchmark/benchmark.h>

namespace {

using bench::haystack;
using bench::needle;
using bench::sentence;
using benchmark::DoNotOptimize;

constexpr int longLength = bench::longLength;

int length(const std::u16string& text) { return static_cast<int>(text.size()); }

// --- qv::String ---

void copyString(benchmark::State& state) {
    const qv::String text(sentence().data(), length(sentence()));
    for (auto _ : state) {
        const qv::String copy(text);
        DoNotOptimize(copy.getData());
    }
}
BENCHMARK(copyString)->Name("copy_and_release/qvString");

void equalString(benchmark::State& state) {
    const qv::String left(haystack().data(), length(haystack()));
    const qv::String right(haystack().data(), length(haystack()));
    for (auto _ : state) {
        DoNotOptimize(left.equals(right));
    }
}
BENCHMARK(equalString)->Name("equal_64Ki/qvString");

void equalShortString(benchmark::State& state) {
    const qv::String left(sentence().data(), length(sentence()));
    const qv::String right(sentence().data(), length(sentence()));
    for (auto _ : state) {
        DoNotOptimize(left.equals(right));
    }
}
BENCHMARK(equalShortString)->Name("equal_short/qvString");

void compareString(benchmark::State& state) {
    const qv::String left(haystack().data(), length(haystack()));
    const qv::String right(haystack().data(), length(haystack()));
    for (auto _ : state) {
        DoNotOptimize(left.compare(right));
    }
}
BENCHMARK(compareString)->Name("compare_64Ki/qvString");

void compareBlindString(benchmark::State& state) {
    const qv::String left(haystack().data(), length(haystack()));
    qv::String right(left);
    right.toUpper();
    for (auto _ : state) {
        DoNotOptimize(left.compare(right, true));
    }
}
BENCHMARK(compareBlindString)->Name("compare_blind_64Ki/qvString");

void searchString(benchmark::State& state) {
    const qv::String text(haystack().data(), length(haystack()));
    const qv::String wanted(needle().data(), length(needle()));
    for (auto _ : state) {
        DoNotOptimize(text.indexOf(wanted));
    }
}
BENCHMARK(searchString)->Name("search_64Ki/qvString");

void substringString(benchmark::State& state) {
    const qv::String text(sentence().data(), length(sentence()));
    for (auto _ : state) {
        const qv::String part = text.substring(5, 35);
        DoNotOptimize(part.getData());
    }
}
BENCHMARK(substringString)->Name("substring/qvString");

void appendString(benchmark::State& state) {
    for (auto _ : state) {
        qv::String text;
        for (int i = 0; i < longLength; ++i) {
            text.append(u'x');
        }
        DoNotOptimize(text.getData());
    }
    state.SetItemsProcessed(state.iterations() * longLength);
}
BENCHMARK(appendString)->Name("append_units_64Ki/qvString");

void formatString(benchmark::State& state) {
    qv::String text;
    for (auto _ : state) {
        text.format(u"file {0} has {1} lines in {2}", -1, u"declaration.txt", u"1234", u"UTF-8");
        DoNotOptimize(text.getData());
    }
}
BENCHMARK(formatString)->Name("format_three/qvString");

void numberString(benchmark::State& state) {
    int number = 1234567;
    for (auto _ : state) {
        const qv::String text = qv::String::valueOf(number++);
        DoNotOptimize(text.getData());
    }
}
BENCHMARK(numberString)->Name("number_to_text/qvString");

// --- qv::Str1 ---

void copyStr1(benchmark::State& state) {
    const qv::Str1Copy text(sentence().data(), length(sentence()));
    for (auto _ : state) {
        const qv::Str1 copy(text);
        DoNotOptimize(copy.getData0());
    }
}
BENCHMARK(copyStr1)->Name("copy_and_release/Str1");

void equalStr1(benchmark::State& state) {
    const qv::Str1Copy left(haystack().data(), length(haystack()));
    const qv::Str1Copy right(haystack().data(), length(haystack()));
    for (auto _ : state) {
        DoNotOptimize(left == right);
    }
}
BENCHMARK(equalStr1)->Name("equal_64Ki/Str1");

void equalShortStr1(benchmark::State& state) {
    const qv::Str1Copy left(sentence().data(), length(sentence()));
    const qv::Str1Copy right(sentence().data(), length(sentence()));
    for (auto _ : state) {
        DoNotOptimize(left == right);
    }
}
BENCHMARK(equalShortStr1)->Name("equal_short/Str1");

void substringStr1(benchmark::State& state) {
    const qv::Str1Copy text(sentence().data(), length(sentence()));
    for (auto _ : state) {
        const qv::Str1 part = text.substring(5, 35);
        DoNotOptimize(part.getData0());
    }
}
BENCHMARK(substringStr1)->Name("substring/Str1");

void appendStr1(benchmark::State& state) {
    for (auto _ : state) {
        qv::Str1 text;
        for (int i = 0; i < longLength; ++i) {
            text.append(u'x');
        }
        DoNotOptimize(text.getData0());
    }
    state.SetItemsProcessed(state.iterations() * longLength);
}
BENCHMARK(appendStr1)->Name("append_units_64Ki/Str1");

void appendAppendor(benchmark::State& state) {
    for (auto _ : state) {
        qv::Str1 text;
        qv::Str1::Appendor appendor(text, 1024, 1024);
        for (int i = 0; i < longLength; ++i) {
            appendor.fastAppend(u'x');
        }
        DoNotOptimize(text.getData0());
    }
    state.SetItemsProcessed(state.iterations() * longLength);
}
BENCHMARK(appendAppendor)->Name("append_units_64Ki/Str1Appendor");

// --- The language's own ---

void copyStd(benchmark::State& state) {
    const std::u16string text = sentence();
    for (auto _ : state) {
        const std::u16string copy(text);
        DoNotOptimize(copy.data());
    }
}
BENCHMARK(copyStd)->Name("copy_and_release/std");

void equalStd(benchmark::State& state) {
    const std::u16string left = haystack();
    const std::u16string right = haystack();
    for (auto _ : state) {
        DoNotOptimize(left == right);
    }
}
BENCHMARK(equalStd)->Name("equal_64Ki/std");

void searchStd(benchmark::State& state) {
    const std::u16string text = haystack();
    for (auto _ : state) {
        DoNotOptimize(text.find(needle()));
    }
}
BENCHMARK(searchStd)->Name("search_64Ki/std");

void substringStd(benchmark::State& state) {
    const std::u16string text = sentence();
    for (auto _ : state) {
        const std::u16string part = text.substr(5, 30);
        DoNotOptimize(part.data());
    }
}
BENCHMARK(substringStd)->Name("substring/std");

void appendStd(benchmark::State& state) {
    for (auto _ : state) {
        std::u16string text;
        for (int i = 0; i < longLength; ++i) {
            text.push_back(u'x');
        }
        DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * longLength);
}
BENCHMARK(appendStd)->Name("append_units_64Ki/std");

} // namespace
