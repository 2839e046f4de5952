// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Params.h"

#include "apps/vantlectl/serve/ServeError.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <cmath>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

[[noreturn]] void refuse(const QString &key, const QString &reason)
{
    throw ServeError(ErrorCode::invalidParams, "parameter \""_L1 + key + "\": "_L1 + reason,
                     ObjectText().text("parameter", key));
}

[[noreturn]] void refuse(const char *key, const QString &reason)
{
    refuse(QString::fromLatin1(key), reason);
}

/// JSON can spell halves of surrogate pairs, which no file name can hold.
QString unicode(const char *key, const QJsonValue &value)
{
    if (!value.isString())
        refuse(key, u"expected a string"_s);
    const QString text = value.toString();
    if (!text.isValidUtf16())
        refuse(key, u"a lone surrogate"_s);
    return text;
}

} // namespace

QJsonValue Params::value(const char *key)
{
    const QString name = QString::fromLatin1(key);
    m_asked.insert(name);
    const QJsonValue found = m_object.value(name);
    return found.isNull() ? QJsonValue(QJsonValue::Undefined) : found;
}

QString Params::text(const char *key)
{
    const auto found = optionalText(key);
    if (!found)
        refuse(key, u"it is missing"_s);
    return *found;
}

std::optional<QString> Params::optionalText(const char *key)
{
    const QJsonValue found = value(key);
    return found.isUndefined() ? std::nullopt : std::optional(unicode(key, found));
}

std::optional<QStringList> Params::optionalTexts(const char *key)
{
    const QJsonValue found = value(key);
    if (found.isUndefined())
        return std::nullopt;
    if (!found.isArray())
        refuse(key, u"expected an array of strings"_s);
    QStringList texts;
    const QJsonArray array = found.toArray();
    for (const QJsonValue element : array)
        texts.append(unicode(key, element));
    return texts;
}

std::optional<qint64> Params::optionalInteger(const char *key)
{
    const auto found = optionalNumber(key);
    if (!found)
        return std::nullopt;
    constexpr double kLargest = 9007199254740992.0; // 2^53: beyond, not every integer is a number of JSON's
    if (std::trunc(*found) != *found || std::abs(*found) > kLargest)
        refuse(key, u"expected an integer"_s);
    return static_cast<qint64>(*found);
}

std::optional<double> Params::optionalNumber(const char *key)
{
    const QJsonValue found = value(key);
    if (found.isUndefined())
        return std::nullopt;
    if (!found.isDouble() || !std::isfinite(found.toDouble()))
        refuse(key, u"expected a number"_s);
    return found.toDouble();
}

std::optional<QByteArray> Params::optionalObject(const char *key)
{
    const QJsonValue found = value(key);
    if (found.isUndefined())
        return std::nullopt;
    if (!found.isObject())
        refuse(key, u"expected an object"_s);
    return QJsonDocument(found.toObject()).toJson(QJsonDocument::Compact);
}

bool Params::flag(const char *key)
{
    const QJsonValue found = value(key);
    if (!found.isUndefined() && !found.isBool())
        refuse(key, u"expected true or false"_s);
    return found.toBool();
}

void Params::requireNoOthers() const
{
    const QStringList keys = m_object.keys();
    for (const QString &key : keys) {
        if (!m_asked.contains(key))
            refuse(key, u"there is no such parameter"_s);
    }
}

} // namespace vantle::ctl
