// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <initializer_list>

namespace vantle::encoder {

/// One argument of a program, of which parts may be secret. What is secret is known from where it was put
/// in, not found again in the text.
class Argument
{
public:
    Argument &plain(const QString &text);
    Argument &secret(const QString &text);

    /// With every secret part masked unless revealed.
    [[nodiscard]] QString text(bool reveal) const;
    [[nodiscard]] QStringList secrets() const;

private:
    struct Part
    {
        QString text;
        bool isSecret;
    };

    QList<Part> m_parts;
};

class Arguments
{
public:
    void add(std::initializer_list<QString> plain);
    void add(const QString &option, const Argument &value);
    void add(const Argument &value) { m_list.append(value); }
    void add(const Arguments &others) { m_list.append(others.m_list); }

    [[nodiscard]] QStringList texts(bool reveal) const;
    /// All secret parts, the longest first.
    [[nodiscard]] QStringList secrets() const;

private:
    QList<Argument> m_list;
};

} // namespace vantle::encoder
