#include "qv/text/charset/detail/EncodingNames.h"

#include "face/EncodingTable.h"
#include "qv/text/charset/detail/UpperName.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace qv::text::charset::detail {

namespace {

using face::CodecRow;

std::u16string decimal(std::uint32_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

/// Freed at library end, whenever that is: no static destructor may come first.
constinit const EncodingNames* names = nullptr;

} // namespace

void EncodingNames::build() {
    auto built = std::make_unique<const EncodingNames>();
    free();
    names = built.release();
}

void EncodingNames::free() noexcept { delete std::exchange(names, nullptr); }

const EncodingNames* EncodingNames::current() noexcept { return names; }

EncodingNames::EncodingNames() {
    for (const CodecRow* row = face::codecTable; row->name != nullptr; ++row) {
        if (row->aliasOf == nullptr && row->codePage != 0) {
            rows_.push_back({row->name, row->codePage, 0});
        }
    }
    for (const face::FurtherEncoding& row : face::furtherEncodings()) {
        rows_.push_back({row.name, row.codePage, 0});
    }
    for (const QVEncInfo& row : rows_) {
        addName(row.name, row);
        addName(decimal(row.codePage).c_str(), row);
    }
    for (const CodecRow* row = face::codecTable; row->name != nullptr; ++row) {
        if (row->aliasOf != nullptr) {
            addAlias(row->name, row->aliasOf);
        }
    }
    for (const face::FurtherAlias& row : face::furtherAliases()) {
        addAlias(row.alias, row.target);
    }
}

void EncodingNames::addName(const char16_t* name, const QVEncInfo& row) {
    byName_.put(UpperName(name), const_cast<QVEncInfo*>(&row));
}

/// Adds an alias if its target is known.
void EncodingNames::addAlias(const char16_t* alias, const char16_t* target) {
    if (const QVEncInfo* const row = find(target)) {
        addName(alias, *row);
    }
}

const QVEncInfo* EncodingNames::find(const char16_t* name) const {
    void* row = nullptr;
    byName_.get(UpperName(name), row);
    return static_cast<const QVEncInfo*>(row);
}

const QVEncInfo* EncodingNames::find(std::uint32_t codePage) const noexcept {
    const auto row = std::find_if(rows_.begin(), rows_.end(), [codePage](const QVEncInfo& info) {
        return info.codePage == codePage;
    });
    return row == rows_.end() ? nullptr : &*row;
}

} // namespace qv::text::charset::detail
