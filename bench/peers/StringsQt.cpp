// Qt's string class on the inputs of the string benchmarks.

#include "../StringsBench.h"

#include <QString>
#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

QString made(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<int>(text.size()));
}

void copyQt(benchmark::State& state) {
    const QString text = made(bench::sentence());
    for (auto _ : state) {
        const QString copy(text);
        DoNotOptimize(copy.constData());
    }
}
BENCHMARK(copyQt)->Name("copy_and_release/Qt");

void equalQt(benchmark::State& state) {
    const QString left = made(bench::haystack());
    const QString right = made(bench::haystack());
    for (auto _ : state) {
        DoNotOptimize(left == right);
    }
}
BENCHMARK(equalQt)->Name("equal_64Ki/Qt");

void equalShortQt(benchmark::State& state) {
    const QString left = made(bench::sentence());
    const QString right = made(bench::sentence());
    for (auto _ : state) {
        DoNotOptimize(left == right);
    }
}
BENCHMARK(equalShortQt)->Name("equal_short/Qt");

void compareQt(benchmark::State& state) {
    const QString left = made(bench::haystack());
    const QString right = made(bench::haystack());
    for (auto _ : state) {
        DoNotOptimize(left.compare(right));
    }
}
BENCHMARK(compareQt)->Name("compare_64Ki/Qt");

void compareBlindQt(benchmark::State& state) {
    const QString left = made(bench::haystack());
    const QString right = left.toUpper();
    for (auto _ : state) {
        DoNotOptimize(left.compare(right, Qt::CaseInsensitive));
    }
}
BENCHMARK(compareBlindQt)->Name("compare_blind_64Ki/Qt");

void searchQt(benchmark::State& state) {
    const QString text = made(bench::haystack());
    const QString wanted = made(bench::needle());
    for (auto _ : state) {
        DoNotOptimize(text.indexOf(wanted));
    }
}
BENCHMARK(searchQt)->Name("search_64Ki/Qt");

void substringQt(benchmark::State& state) {
    const QString text = made(bench::sentence());
    for (auto _ : state) {
        const QString part = text.mid(5, 30);
        DoNotOptimize(part.constData());
    }
}
BENCHMARK(substringQt)->Name("substring/Qt");

void appendQt(benchmark::State& state) {
    for (auto _ : state) {
        QString text;
        for (int i = 0; i < bench::longLength; ++i) {
            text.append(QChar(u'x'));
        }
        DoNotOptimize(text.constData());
    }
    state.SetItemsProcessed(state.iterations() * bench::longLength);
}
BENCHMARK(appendQt)->Name("append_units_64Ki/Qt");

void formatQt(benchmark::State& state) {
    const QString pattern = QStringLiteral("file %1 has %2 lines in %3");
    const QString file = QStringLiteral("declaration.txt");
    const QString count = QStringLiteral("1234");
    const QString encoding = QStringLiteral("UTF-8");
    for (auto _ : state) {
        const QString text = pattern.arg(file, count, encoding);
        DoNotOptimize(text.constData());
    }
}
BENCHMARK(formatQt)->Name("format_three/Qt");

void numberQt(benchmark::State& state) {
    int number = 1234567;
    for (auto _ : state) {
        const QString text = QString::number(number++);
        DoNotOptimize(text.constData());
    }
}
BENCHMARK(numberQt)->Name("number_to_text/Qt");

} // namespace
