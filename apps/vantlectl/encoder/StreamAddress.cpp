// SPDX-License-Identifier: MIT
#include "apps/vantlectl/encoder/StreamAddress.h"

#include <QtCore/QRegularExpression>

namespace vantle::ctl {

using namespace Qt::StringLiterals;

std::optional<StreamAddress> StreamAddress::parse(const QString &text)
{
    static const QRegularExpression form(
        u"\\A(?:([A-Za-z][A-Za-z0-9+.-]*)://)?(?:([^/?@:]*)(?::([^/?@]*))?@)?"
        "(\\[[0-9A-Fa-f:.]+\\]|[^\\s/?#@:\\[\\]]*)(?::(\\d{1,5}))?(?:/([^\\s?]*))?(?:\\?(\\S*))?\\z"_s);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    StreamAddress address{
        match.captured(1).toLower(), match.captured(2), match.captured(3), match.captured(4),
        match.captured(5),           match.captured(6), match.captured(7)};
    address.path = address.path.split(u'/', Qt::SkipEmptyParts).join(u'/');
    return address;
}

Argument StreamAddress::server() const
{
    Argument server;
    server.plain(scheme + "://"_L1);
    if (!login.isEmpty() || !password.isEmpty())
        server.plain(login + u':').secret(password).plain(u"@"_s);
    server.plain(port.isEmpty() ? host : host + u':' + port);
    return server;
}

} // namespace vantle::ctl
