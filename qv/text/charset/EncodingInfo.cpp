#include "qv/text/charset/EncodingInfo.h"

#include "face/EncodingTable.h"
#include "qv/ErrorRule.h"
#include "qv/text/charset/detail/EncodingNames.h"

#include <algorithm>

namespace {

using qv::text::charset::detail::EncodingNames;

std::int32_t copyRow(const QVEncInfo* row, QVEncInfo* out) noexcept {
    if (row == nullptr) {
        return qv::QV_E_FAIL;
    }
    *out = *row;
    return qv::QV_S_OK;
}

} // namespace

std::int32_t QVEnumerateEncInfo(unsigned int* count, QVEncInfo* buffer) noexcept {
    if (count == nullptr || (*count > 0 && buffer == nullptr)) {
        return qv::QV_E_INVALIDARG;
    }
    const EncodingNames* const names = EncodingNames::current();
    const auto rows = names == nullptr ? std::span<const QVEncInfo>() : names->rows();
    const unsigned int places = *count;
    *count = static_cast<unsigned int>(rows.size());
    if (places < rows.size()) {
        return qv::QV_E_BUFFERTOOSMALL;
    }
    std::copy(rows.begin(), rows.end(), buffer);
    return qv::QV_S_OK;
}

std::int32_t QVGetEncInfoByCodePage(unsigned int codePage, QVEncInfo* out) noexcept {
    if (out == nullptr) {
        return qv::QV_E_INVALIDARG;
    }
    const EncodingNames* const names = EncodingNames::current();
    return copyRow(names == nullptr ? nullptr : names->find(codePage), out);
}

std::int32_t QVGetEncInfoByName(const char16_t* name, QVEncInfo* out) noexcept {
    if (name == nullptr || out == nullptr) {
        return qv::QV_E_INVALIDARG;
    }
    const EncodingNames* const names = EncodingNames::current();
    const QVEncInfo* row = nullptr;
    const std::int32_t result = qv::toResult([&] {
        if (names != nullptr) {
            row = names->find(name);
        }
    });
    return result < 0 ? result : copyRow(row, out);
}

namespace qv::text::charset {

void forEachEncodingName(void (*visit)(const EncodingName& name, void* context), void* context) {
    for (const face::CodecRow* row = face::codecTable; row->name != nullptr; ++row) {
        visit({row->name, row->codePage, row->aliasOf, true}, context);
    }
    for (const face::FurtherEncoding& row : face::furtherEncodings()) {
        visit({row.name, row.codePage, nullptr, false}, context);
    }
    for (const face::FurtherAlias& row : face::furtherAliases()) {
        visit({row.alias, 0, row.target, false}, context);
    }
}

} // namespace qv::text::charset
