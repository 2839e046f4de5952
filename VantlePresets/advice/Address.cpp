// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/Address.h"

#include <QtCore/QRegularExpression>

namespace vantle::advice {

using namespace Qt::StringLiterals;

std::optional<Address> Address::parse(const QString &text)
{
    static const QRegularExpression form(
        u"\\A(?:(?<scheme>[A-Za-z][A-Za-z0-9+.-]*)://)?(?:(?<user>[^/?@]*)@)?"
        "(?<host>\\[[0-9A-Fa-f:.]+\\]|[^\\s/?#@:\\[\\]]*)(?::(?<port>\\d{1,5}))?"
        "(?<path>/[^\\s?]*)?(?:\\?(?<query>\\S*))?\\z"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return Address{match.captured(u"scheme"_s).toLower(),
                   match.captured(u"user"_s),
                   match.captured(u"host"_s),
                   match.captured(u"port"_s),
                   match.captured(u"path"_s),
                   match.captured(u"query"_s)};
}

QString Address::text() const
{
    const auto part = [](const QString &value, QLatin1StringView before, QLatin1StringView behind) {
        return value.isEmpty() ? QString() : before + value + behind;
    };
    return part(scheme, {}, "://"_L1) + part(userInfo, {}, "@"_L1) + host + part(port, ":"_L1, {}) + path +
           part(query, "?"_L1, {});
}

bool Address::isLocal() const
{
    return host.compare("localhost"_L1, Qt::CaseInsensitive) == 0 || host.startsWith("127."_L1) ||
           host == "[::1]"_L1;
}

} // namespace vantle::advice
