#pragma once
// The catalogue's tables are sorted by code, one row per code: checked at
// compile time with ascending(), searched with lookup().

#include "protocol/Catalogue.h"

#include <cstddef>

namespace qrx::protocol {

constexpr bool ascending(const Message *rows, std::size_t n)
{
    for (std::size_t i = 1; i < n; ++i) {
        if (rows[i - 1].code >= rows[i].code)
            return false;
    }
    return true;
}

constexpr const Message *lookup(const Message *rows, std::size_t n, quint16 code)
{
    std::size_t lo = 0, hi = n;
    while (lo < hi) {
        const std::size_t mid = (lo + hi) / 2;
        if (rows[mid].code < code)
            lo = mid + 1;
        else
            hi = mid;
    }
    return (lo < n && rows[lo].code == code) ? rows + lo : nullptr;
}

} // namespace qrx::protocol
