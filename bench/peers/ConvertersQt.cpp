#include "bench/ConvertersBench.h"

#include <QByteArray>
#include <QString>

/// Qt: its strings make their own memory, and so it is counted in.
namespace bench {

namespace {

std::size_t decodeUtf8(std::string_view bytes, std::u16string&) {
    return static_cast<std::size_t>(
        QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())).size());
}

std::size_t encodeUtf8(std::u16string_view units, std::string&) {
    const QString text = QString::fromRawData(reinterpret_cast<const QChar*>(units.data()),
                                              static_cast<int>(units.size()));
    return static_cast<std::size_t>(text.toUtf8().size());
}

[[maybe_unused]] const bool isRegistered = (measure("UTF-8", "qt", decodeUtf8, encodeUtf8), true);

} // namespace

} // namespace bench
