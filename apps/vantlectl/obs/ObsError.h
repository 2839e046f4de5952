// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <stdexcept>

namespace vantle::ctl::obs {

/// Why OBS can't be reached or does not do what it was asked for, as it is to be shown.
class Error : public std::runtime_error
{
public:
    explicit Error(const QString &text) : std::runtime_error(text.toStdString()) {}

    [[nodiscard]] QString text() const { return QString::fromUtf8(what()); }
};

/// A request that OBS answered with a refusal.
class RequestError : public Error
{
public:
    RequestError(const QString &text, int code) : Error(text), m_code(code) {}

    /// obs-websocket's status, 600 for "not found".
    [[nodiscard]] int code() const { return m_code; }

private:
    int m_code;
};

/// A request that OBS does not answer in time.
class NoAnswer : public Error
{
public:
    using Error::Error;
};

} // namespace vantle::ctl::obs
