// SPDX-License-Identifier: MIT
#include "apps/vantlectl/TextValue.h"

#include <QtCore/QFile>

#include <cstdio>
#include <stdexcept>

namespace vantle::ctl {
namespace {

/// Reads one line, and refuses what has more of them.
QString onlyLineOf(QFile &file)
{
    constexpr qint64 kLongest = 1 << 16;
    const QByteArray content = file.read(kLongest + 1);
    if (file.error() != QFileDevice::NoError)
        throw std::runtime_error(file.errorString().toStdString());
    QByteArrayView line = content;
    if (line.endsWith('\n'))
        line.chop(line.endsWith("\r\n") ? 2 : 1);
    if (content.size() > kLongest || line.contains('\n'))
        throw std::runtime_error("expected one line");
    if (!line.isValidUtf8())
        throw std::runtime_error("expected UTF-8");
    return QString::fromUtf8(line);
}

} // namespace

QString textValue(const QString &value)
{
    if (!value.startsWith(u'@'))
        return value;
    QString name = value.sliced(1);
    if (name.startsWith(u'@'))
        return name;
    QFile file(name);
    const bool isOpen = name == u'-' ? file.open(stdin, QFile::ReadOnly) : file.open(QFile::ReadOnly);
    if (!isOpen)
        throw std::runtime_error(QString(name + QStringLiteral(": ") + file.errorString()).toStdString());
    const QString text = onlyLineOf(file);
    if (text.isEmpty())
        throw std::runtime_error("there is no text to read; nothing behind \"=\" empties a field");
    return text;
}

} // namespace vantle::ctl
