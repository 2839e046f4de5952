// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QStringList>

#include <optional>

namespace vantle::ctl {

/// The parameters of a request, by their names. Each query throws ServeError (invalidParams) when the value
/// is of another type; the optional ones give nothing when it is absent or null.
class Params
{
public:
    explicit Params(const QJsonObject &object) : m_object(object) {}

    [[nodiscard]] QString text(const char *key);
    [[nodiscard]] std::optional<QString> optionalText(const char *key);
    [[nodiscard]] std::optional<QStringList> optionalTexts(const char *key);
    [[nodiscard]] std::optional<qint64> optionalInteger(const char *key);
    [[nodiscard]] std::optional<double> optionalNumber(const char *key);
    /// The object as JSON text.
    [[nodiscard]] std::optional<QByteArray> optionalObject(const char *key);
    /// False when absent.
    [[nodiscard]] bool flag(const char *key);

    /// Throws for a parameter that nobody has asked for: it may be misspelt, and would have no effect.
    void requireNoOthers() const;

private:
    [[nodiscard]] QJsonValue value(const char *key);

    const QJsonObject m_object;
    QSet<QString> m_asked;
};

} // namespace vantle::ctl
