// SPDX-License-Identifier: MIT
#include "VantlePresets/store/NameRules.h"

#include "VantlePresets/core/ProgrammingFault.h"

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <optional>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

icu::UnicodeString toICU(const QString &text)
{
    return {reinterpret_cast<const UChar *>(text.utf16()), static_cast<int32_t>(text.size())};
}

QString fromICU(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

/// One collator a thread, as they are not documented as safe to share.
const icu::Collator *collator()
{
    static thread_local const std::unique_ptr<icu::Collator> instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        // The C locale's order is that of the code points; people get the order of no language in particular.
        const icu::Locale &locale = icu::Locale::getDefault();
        const bool isPosix = std::strcmp(locale.getVariant(), "POSIX") == 0;
        std::unique_ptr<icu::Collator> made(
            icu::Collator::createInstance(isPosix ? icu::Locale::getRoot() : locale, status));
        if (U_FAILURE(status))
            return std::unique_ptr<icu::Collator>();
        made->setStrength(icu::Collator::SECONDARY); // accents count, case does not
        // Otherwise names that are equal, with their accents in another order, would stand apart.
        made->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
        return made;
    }();
    return instance.get();
}

bool isBlank(QChar c)
{
    return c == u'\t' || c.category() == QChar::Separator_Space;
}

bool isBlankOrBreak(QChar c)
{
    return isBlank(c) || (c >= u'\n' && c <= u'\r') || c == u'\u0085' || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

template <class Predicate>
QString trimmed(const QString &text, Predicate isTrimmed)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isTrimmed(text[begin]))
        ++begin;
    while (end > begin && isTrimmed(text[end - 1]))
        --end;
    return text.sliced(begin, end - begin);
}

/// ASCII digits with an optional sign; nothing for other digits or a number beyond 64 bits.
std::optional<qint64> parseDecimal(const QString &text)
{
    const std::string ascii = text.toStdString();
    const char *begin = ascii.data();
    const char *const end = begin + ascii.size();
    if (begin != end && *begin == '+')
        ++begin;
    qint64 value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (begin == end || error != std::errc() || stop != end)
        return std::nullopt;
    return value;
}

struct CopyName
{
    QString base;
    QString number; ///< "" when the name has none
};

/// The parts of "base copy number"; nothing when the text has a line break that the pattern does not cross.
std::optional<CopyName> splitCopyName(const QString &text)
{
    static const std::unique_ptr<icu::RegexPattern> pattern = [] {
        UErrorCode status = U_ZERO_ERROR;
        UParseError where;
        return std::unique_ptr<icu::RegexPattern>(icu::RegexPattern::compile(
            icu::UnicodeString::fromUTF8(R"(^(.*?)(?:\scopy(?:\s(\d+))?)?$)"), where, status));
    }();
    if (!pattern)
        return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString input = toICU(text);
    const std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(input, status));
    if (U_FAILURE(status) || !matcher->find(status) || U_FAILURE(status))
        return std::nullopt;
    CopyName parts{fromICU(matcher->group(1, status)), fromICU(matcher->group(2, status))};
    if (U_FAILURE(status))
        return std::nullopt;
    return parts;
}

qint64 successor(qint64 count)
{
    qint64 next = 0;
    if (__builtin_add_overflow(count, qint64{1}, &next))
        programmingFault("the counter of a preset's copies overflows");
    return next;
}

} // namespace

QString canonicalName(const QString &name)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *const normalizer = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return name;
    const icu::UnicodeString text = toICU(name);
    if (normalizer->isNormalized(text, status) && U_SUCCESS(status))
        return name;
    const icu::UnicodeString normalized = normalizer->normalize(text, status);
    return U_SUCCESS(status) ? fromICU(normalized) : name;
}

QByteArray collationKey(const QString &name)
{
    const icu::Collator *const order = collator();
    if (!order)
        return name.toCaseFolded().toUtf8(); // without the library's data any stable order will do
    const icu::UnicodeString text = toICU(name);
    QByteArray key(2 * name.size() + 16, Qt::Uninitialized);
    const auto fill = [&] {
        return order->getSortKey(text, reinterpret_cast<uint8_t *>(key.data()),
                                 static_cast<int32_t>(key.size()));
    };
    int32_t length = fill();
    if (length > key.size()) {
        key.resize(length);
        length = fill();
    }
    key.resize(length);
    return key;
}

QString trimmedName(const QString &name)
{
    return trimmed(name, isBlankOrBreak);
}

QString uniqueName(const QString &wanted, const NameIsTaken &isTaken)
{
    QString candidate = wanted;
    for (qint64 n = 2; isTaken(candidate); ++n)
        candidate = wanted + u' ' + QString::number(n);
    return candidate;
}

QString duplicateName(const QString &source, const NameIsTaken &isTaken)
{
    const QString text = trimmed(source, isBlank);
    const auto parts = splitCopyName(text);
    if (!parts)
        return uniqueName(source + " copy"_L1, isTaken);

    const QString base = trimmed(parts->base, isBlank);
    const QString stem = base.isEmpty() ? u"copy"_s : base + " copy"_L1;
    const qint64 number = parseDecimal(parts->number).value_or(text.endsWith(" copy"_L1) ? 1 : 0);

    qint64 count = successor(number);
    QString candidate = count >= 2 ? stem + u' ' + QString::number(count) : stem;
    while (isTaken(candidate)) {
        count = successor(count);
        candidate = stem + u' ' + QString::number(count);
    }
    return candidate;
}

} // namespace vantle
