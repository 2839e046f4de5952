// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/ServeError.h"

#include <QtCore/QJsonObject>

namespace vantle::ctl {

/// A request or notification of JSON-RPC 2.0.
struct Request
{
    QByteArray id; ///< as JSON text; empty for a notification
    QString method;
    QJsonObject params;

    /// Reads a body. What can't be read comes back as the answer to it, a whole body, with the request's id
    /// where it could be told.
    [[nodiscard]] static std::optional<Request> parse(const QByteArray &body, QByteArray &answer);
    /// The id as JSON text; empty for a value that can't be one.
    [[nodiscard]] static QByteArray idText(const QJsonValue &id);
};

/// Bodies of messages to the client.
[[nodiscard]] QByteArray answerTo(const QByteArray &id, const QByteArray &result);
/// An empty id is written as null.
[[nodiscard]] QByteArray refusalOf(const QByteArray &id, const ServeError &error);
[[nodiscard]] QByteArray notificationOf(const char *method, const ObjectText &params);

} // namespace vantle::ctl
