// SPDX-License-Identifier: MIT
#include "VantlePresets/model/StreamAddress.h"

#include "VantlePresets/model/Secrets.h"

#include <QtCore/QRegularExpression>

namespace vantle {

using namespace Qt::StringLiterals;

namespace {

enum Part { kScheme = 1, kLogin, kPassword, kHost, kPort, kPath, kQuery };

QRegularExpressionMatch partsOf(const QString &text)
{
    static const QRegularExpression form(
        u"\\A(?:([A-Za-z][A-Za-z0-9+.-]*)://)?(?:([^/?@:]*)(?::([^/?@]*))?@)?"
        "(\\[[0-9A-Fa-f:.]+\\]|[^\\s/?#@:\\[\\]]*)(?::(\\d{1,5}))?(?:/([^\\s?]*))?(?:\\?(\\S*))?\\z"_s);
    return form.match(text);
}

QString withSecretsAs(const QString &replacement, const QString &text)
{
    const QRegularExpressionMatch match = partsOf(text);
    if (!match.hasMatch())
        return replacement;
    QString result = text;
    const auto replace = [&](qsizetype start, qsizetype end) {
        if (end > start)
            result.replace(start, end - start, replacement);
    };
    // From the end, so that what stands before keeps its place.
    replace(match.capturedStart(kQuery), match.capturedEnd(kQuery));
    QString path = match.captured(kPath);
    while (path.endsWith(u'/'))
        path.chop(1);
    if (const qsizetype key = path.lastIndexOf(u'/') + 1; key > 0)
        replace(match.capturedStart(kPath) + key, match.capturedStart(kPath) + path.size());
    replace(match.capturedStart(kPassword), match.capturedEnd(kPassword));
    return result;
}

} // namespace

std::optional<StreamAddress> StreamAddress::parse(const QString &text)
{
    const QRegularExpressionMatch match = partsOf(text);
    if (!match.hasMatch())
        return std::nullopt;
    StreamAddress address{match.captured(kScheme).toLower(),
                          match.captured(kLogin),
                          match.captured(kPassword),
                          match.captured(kHost),
                          match.captured(kPort),
                          match.captured(kPath),
                          match.captured(kQuery)};
    address.path = address.path.split(u'/', Qt::SkipEmptyParts).join(u'/');
    return address;
}

QString StreamAddress::text() const
{
    const auto part = [](QLatin1StringView before, const QString &value, QLatin1StringView behind = {}) {
        return value.isEmpty() ? QString() : before + value + behind;
    };
    return part({}, scheme, "://"_L1) + part({}, login + part(":"_L1, password), "@"_L1) + host +
           part(":"_L1, port) + part("/"_L1, path) + part("?"_L1, query);
}

QString shownAddress(const QString &text)
{
    return text.isEmpty() ? text : withSecretsAs(masked(text), text);
}

QString addressWithoutSecrets(const QString &text)
{
    return withSecretsAs({}, text);
}

} // namespace vantle
