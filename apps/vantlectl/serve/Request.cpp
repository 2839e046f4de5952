// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Request.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QVariant>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

constexpr auto kVersion = "\"2.0\"";

QJsonObject parsedObject(const QByteArray &body)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        throw ServeError(ErrorCode::parseError,
                         "not JSON: "_L1 + error.errorString() + " at byte "_L1 +
                             QString::number(error.offset),
                         ObjectText().number("offset", error.offset));
    if (document.isArray())
        throw ServeError(ErrorCode::invalidRequest,
                         u"batches are not taken; send one request after another"_s);
    return document.object();
}

Request requestOf(const QJsonObject &object, const QByteArray &id)
{
    const auto refuse = [](const QString &reason) { throw ServeError(ErrorCode::invalidRequest, reason); };
    if (object.value("jsonrpc"_L1) != QJsonValue("2.0"_L1))
        refuse(u"\"jsonrpc\" is not \"2.0\""_s);
    if (id.isEmpty() && object.contains("id"_L1))
        refuse(u"\"id\" is neither a string nor an integer of 64 bits"_s);
    const QJsonValue method = object.value("method"_L1);
    if (!method.isString())
        refuse(u"\"method\" is no string"_s);
    const QJsonValue params = object.value("params"_L1);
    if (!params.isUndefined() && !params.isObject())
        throw ServeError(ErrorCode::invalidParams,
                         u"\"params\" is no object: parameters go by their names"_s);
    return {id, method.toString(), params.toObject()};
}

} // namespace

QByteArray Request::idText(const QJsonValue &id)
{
    if (id.isString())
        return jsonText(id.toString());
    const QVariant number = id.toVariant(); // a double unless it is an integer of 64 bits
    return number.typeId() == QMetaType::LongLong ? QByteArray::number(number.toLongLong()) : QByteArray();
}

std::optional<Request> Request::parse(const QByteArray &body, QByteArray &answer)
{
    QByteArray id;
    try {
        const QJsonObject object = parsedObject(body);
        id = idText(object.value("id"_L1));
        return requestOf(object, id);
    } catch (const ServeError &error) {
        answer = refusalOf(id, error);
        return std::nullopt;
    }
}

QByteArray answerTo(const QByteArray &id, const QByteArray &result)
{
    return ObjectText().raw("jsonrpc", kVersion).raw("id", id).raw("result", result).json();
}

QByteArray refusalOf(const QByteArray &id, const ServeError &error)
{
    return ObjectText()
        .raw("jsonrpc", kVersion)
        .raw("id", id.isEmpty() ? QByteArrayView("null") : QByteArrayView(id))
        .raw("error", error.json())
        .json();
}

QByteArray notificationOf(const char *method, const ObjectText &params)
{
    return ObjectText()
        .raw("jsonrpc", kVersion)
        .text("method", QString::fromLatin1(method))
        .raw("params", params.json())
        .json();
}

} // namespace vantle::ctl
