// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <ostream>

// GoogleTest shows Qt's strings as text instead of as arrays of numbers.

QT_BEGIN_NAMESPACE

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

QT_END_NAMESPACE
