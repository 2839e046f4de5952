// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PastedAddress.h"

#include <QtCore/QRegularExpression>

namespace vantle {

using namespace Qt::StringLiterals;

std::optional<PastedAddress> PastedAddress::parse(const QString &text)
{
    static const QRegularExpression form(
        u"\\A\\s*(rtmps?|rtsp|srt)://(?:([^/?@:\\s]*)(?::([^/?@\\s]*))?@)?"
        "(\\[[0-9a-f:.]+\\]|[^\\s/?#@:\\[\\]]+)(?::(\\d{1,5}))?([/?]\\S*)?\\s*\\z"_s,
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return PastedAddress{match.captured(1).toLower(), match.captured(2), match.captured(3),
                         match.captured(4),           match.captured(5), match.captured(6)};
}

QString PastedAddress::application() const
{
    const QString parts = path.section(u'?', 0, 0);
    const qsizetype last = parts.lastIndexOf(u'/');
    return last > 0 ? parts.sliced(1, last - 1) : parts.sliced(parts.startsWith(u'/') ? 1 : 0);
}

QString PastedAddress::streamKey() const
{
    const qsizetype last = path.section(u'?', 0, 0).lastIndexOf(u'/');
    return last > 0 ? path.sliced(last + 1) : QString();
}

} // namespace vantle
