// SPDX-License-Identifier: GPL-3.0-or-later
#include "Utf8Validator.h"

#include <cstdint>
#include <cstring>

namespace RebrickableKit {

bool Utf8Validator::isValid(QByteArrayView bytes)
{
    Utf8Validator validator;
    validator.feed(bytes);
    return validator.finish();
}

bool Utf8Validator::feed(QByteArrayView bytes)
{
    if (!m_valid)
        return false;
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.data());
    const qsizetype size = bytes.size();
    qsizetype position = 0;
    while (position < size) {
        if (m_remaining == 0) {
            // Dumps are almost all ASCII: skip eight plain bytes at a time.
            while (position + 8 <= size) {
                std::uint64_t word;
                std::memcpy(&word, data + position, sizeof word);
                if (word & 0x8080808080808080ULL)
                    break;
                position += 8;
            }
            if (position >= size)
                break;
            const unsigned char lead = data[position++];
            if (lead < 0x80)
                continue;
            m_low = 0x80;
            m_high = 0xBF;
            if (lead >= 0xC2 && lead <= 0xDF) {
                m_remaining = 1;
            } else if (lead >= 0xE0 && lead <= 0xEF) {
                m_remaining = 2;
                if (lead == 0xE0)
                    m_low = 0xA0; // below is an overlong form
                else if (lead == 0xED)
                    m_high = 0x9F; // above are the UTF-16 surrogates
            } else if (lead >= 0xF0 && lead <= 0xF4) {
                m_remaining = 3;
                if (lead == 0xF0)
                    m_low = 0x90; // below is an overlong form
                else if (lead == 0xF4)
                    m_high = 0x8F; // above is beyond U+10FFFF
            } else {
                m_valid = false;
                return false;
            }
            continue;
        }
        const unsigned char continuation = data[position++];
        if (continuation < m_low || continuation > m_high) {
            m_valid = false;
            return false;
        }
        m_low = 0x80;
        m_high = 0xBF;
        --m_remaining;
    }
    return true;
}

} // namespace RebrickableKit
