#include "qv/io/BufferedReader.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/InputStreamReader.h"
#include <cstdio>
int main() {
    auto file = qv::make<qv::io::FileInputStream>(qv::String(u"examples/texts/declaration.txt"));
    auto lines =
        qv::make<qv::io::BufferedReader>(qv::make<qv::io::InputStreamReader>(file, u"UTF-8"));
    for (qv::String line; lines->readLine(line) >= 0;)
        std::printf("%4d units: %s\n", line.getLength(), line.getBytes());
}
