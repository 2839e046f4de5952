// SPDX-License-Identifier: MIT
#include "VantlePresets/store/NameRules.h"
#include "tests/support/QtPrinters.h"

#include <gtest/gtest.h>

#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

NameIsTaken takenBy(const QStringList &names)
{
    return [names](const QString &name) { return names.contains(name); };
}

TEST(NameRules, DuplicateNames)
{
    struct Case
    {
        QString source;
        QStringList taken;
        QString copy;
    };
    const Case cases[] = {
        {u"Show"_s, {}, u"Show copy"_s},
        {u"Show"_s, {u"Show copy"_s, u"Show copy 2"_s}, u"Show copy 3"_s},
        {u"Show copy"_s, {}, u"Show copy 2"_s},
        {u"Show copy 7"_s, {u"Show copy 8"_s}, u"Show copy 9"_s},
        {u"Show copy 0"_s, {}, u"Show copy"_s},
        {u"Show copy 0"_s, {u"Show copy"_s}, u"Show copy 2"_s},
        {u"Show copy 1"_s, {}, u"Show copy 2"_s},
        {u" \tShow "_s, {}, u"Show copy"_s},
        {u""_s, {}, u"copy"_s},
        {u""_s, {u"copy"_s}, u"copy 2"_s},
        {u"copy"_s, {}, u"copy copy"_s},
        {u"Show copy -3"_s, {}, u"Show copy -3 copy"_s},
        {u"Show copy 99999999999999999999"_s, {}, u"Show copy"_s},
        {u"Show copy \u0663"_s, {}, u"Show copy"_s}, // a digit to the pattern, not to the number
        {u"Show\u00A0copy"_s, {}, u"Show copy"_s},   // white space to the pattern, no " copy" at the end
        {u"Show\ncopy"_s, {}, u"Show copy"_s},       // \s crosses the break
        {u"Show copy\n"_s, {}, u"Show copy"_s},      // $ stands before a break at the end
        {u"Sh\now"_s, {}, u"Sh\now copy"_s},         // . does not cross a break: no match
        {u" Sh\now "_s, {}, u" Sh\now  copy"_s},     // and then the name is not trimmed
    };
    for (const Case &c : cases)
        EXPECT_EQ(duplicateName(c.source, takenBy(c.taken)), c.copy) << c.source.toStdString();
}

TEST(NameRulesDeathTest, CounterOverflowStopsTheProcess)
{
    const auto none = [](const QString &) { return false; };
    EXPECT_EQ(duplicateName(u"S copy 9223372036854775806"_s, none), u"S copy 9223372036854775807"_s);
    EXPECT_DEATH(static_cast<void>(duplicateName(u"S copy 9223372036854775807"_s, none)), "overflow");
}

TEST(NameRules, UniqueNamesFillTheFirstGap)
{
    EXPECT_EQ(uniqueName(u"W"_s, takenBy({})), u"W"_s);
    EXPECT_EQ(uniqueName(u"W"_s, takenBy({u"W"_s, u"W 2"_s, u"W 4"_s})), u"W 3"_s);
}

TEST(NameRules, TrimmingTakesBlanksAndBreaksOfUnicode)
{
    EXPECT_EQ(trimmedName(u"\u2003\r\n a b\u00A0\u2028\u0085\t"_s), u"a b"_s);
    EXPECT_EQ(trimmedName(u" \n "_s), u""_s);
}

TEST(NameRules, EqualityIsCanonicalAndCountsCase)
{
    EXPECT_EQ(canonicalName(u"Caf\u00E9"_s), canonicalName(u"Cafe\u0301"_s));
    EXPECT_NE(canonicalName(u"Show"_s), canonicalName(u"show"_s));
    EXPECT_NE(canonicalName(u"Show"_s), canonicalName(u"Show "_s));
    EXPECT_NE(canonicalName(u"\uFB01"_s), canonicalName(u"fi"_s)); // compatible, not canonical
}

TEST(NameRules, OrderIsLocalizedAndIgnoresCase)
{
    QStringList names{u"zebra"_s, u"Ärger"_s, u"apple"_s, u"Zebra 2"_s, u"Banana"_s, u"azure"_s};
    std::sort(names.begin(), names.end(),
              [](const QString &a, const QString &b) { return collationKey(a) < collationKey(b); });
    EXPECT_EQ(names,
              (QStringList{u"apple"_s, u"Ärger"_s, u"azure"_s, u"Banana"_s, u"zebra"_s, u"Zebra 2"_s}));
    EXPECT_EQ(collationKey(u"show"_s), collationKey(u"SHOW"_s));
    EXPECT_EQ(collationKey(u"a\u0301\u0323"_s), collationKey(u"a\u0323\u0301"_s)); // one name, two spellings
    EXPECT_LT(collationKey(u"a"_s),
              collationKey(QString(5000, u'a'))); // longer than any guess of the key's size
}

} // namespace
} // namespace vantle
