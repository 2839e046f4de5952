// SPDX-License-Identifier: MIT
#include "VantlePresets/document/JsonTreeBuilder.h"

#include <charconv>
#include <optional>
#include <string>
#include <string_view>

namespace vantle::document {
namespace {

std::optional<qint64> parseInteger(std::string_view text)
{
    qint64 value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// The value of a JSON number with a fraction or an exponent, if it is an integer of 64 bits.
std::optional<qint64> integerFromDecimal(std::string_view text)
{
    const bool negative = text.front() == '-';
    if (negative)
        text.remove_prefix(1);

    qint64 scale = 0;
    const std::size_t exponentAt = text.find_first_of("eE");
    if (exponentAt != std::string_view::npos) {
        std::string_view exponent = text.substr(exponentAt + 1);
        if (exponent.front() == '+')
            exponent.remove_prefix(1);
        const auto parsed = parseInteger(exponent);
        if (!parsed || *parsed > 1'000'000'000 || *parsed < -1'000'000'000)
            return std::nullopt;
        scale = *parsed;
    }

    std::string digits(text.substr(0, exponentAt));
    if (const std::size_t point = digits.find('.'); point != std::string::npos) {
        scale -= static_cast<qint64>(digits.size() - point - 1);
        digits.erase(point, 1);
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty())
        return 0;
    const std::size_t significant = digits.find_last_not_of('0') + 1;
    scale += static_cast<qint64>(digits.size() - significant);
    digits.resize(significant);

    constexpr qint64 kMaximumDigits = 19; // of 2^63
    if (scale < 0 || static_cast<qint64>(digits.size()) + scale > kMaximumDigits)
        return std::nullopt;
    digits.append(static_cast<std::size_t>(scale), '0');
    return parseInteger(negative ? "-" + digits : digits);
}

} // namespace

bool JsonTreeBuilder::RawNumber(const char *text, rapidjson::SizeType length, bool)
{
    const std::string_view number(text, length);
    auto integer = parseInteger(number);
    if (!integer && number.find_first_of(".eE") != std::string_view::npos)
        integer = integerFromDecimal(number);
    const bool minusZero = integer == 0 && number.front() == '-';
    if (integer && !minusZero)
        return Int64(*integer);

    double real = 0;
    // Out of range is too large or too small; a number too small is zero. The parser has refused large
    // integer parts, which leaves a positive exponent as the only way to be too large.
    const std::size_t exponentAt = number.find_first_of("eE");
    const bool canBeLarge = exponentAt != std::string_view::npos && number[exponentAt + 1] != '-';
    if (std::from_chars(text, text + length, real).ec != std::errc() && canBeLarge) {
        m_refusal = QStringLiteral("number out of range");
        return false;
    }
    return Double(real);
}

bool JsonTreeBuilder::enter()
{
    if (m_depth == kMaximumDepth) {
        m_refusal = QStringLiteral("nested more than %1 deep").arg(kMaximumDepth);
        return false;
    }
    ++m_depth;
    return true;
}

bool JsonTreeBuilder::isUnicode(const char *text, rapidjson::SizeType length)
{
    // The parser encodes a lone low surrogate as if it were a character: ED B0 80 to ED BF BF.
    const char *const end = text + length;
    for (const char *at = text;
         (at = static_cast<const char *>(std::memchr(at, 0xED, static_cast<std::size_t>(end - at)))) !=
         nullptr;
         ++at) {
        if (end - at > 1 && static_cast<unsigned char>(at[1]) >= 0xA0) {
            m_refusal = QStringLiteral("lone surrogate in a string");
            return false;
        }
    }
    return true;
}

} // namespace vantle::document
