// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/JsonText.h"

#include <exception>

namespace vantle::ctl {

/// What went wrong with a request, as JSON-RPC tells it. The negative ones are those of JSON-RPC and of
/// language servers, the others the store's own; docs/serve.md says what each one's data hold.
enum class ErrorCode : int {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParams = -32602,
    internalError = -32603,
    requestCancelled = -32800,

    notFound = 1,
    conflict = 2,
    invalidName = 3,
    invalidValue = 4,
    invalidDocument = 5,
    notSaved = 6,
    unavailable = 7,
    fileFailed = 8,
    notPlanned = 9,
    ending = 10,
    tooMany = 11,
};

/// The answer to a request that is not carried out.
class ServeError : public std::exception
{
public:
    ServeError(ErrorCode code, const QString &message, ObjectText data = {})
        : m_code(code), m_message(message), m_data(std::move(data)), m_what(message.toUtf8())
    {
    }

    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }
    /// The member "error" of the answer. Its data have the code's name as "kind".
    [[nodiscard]] QByteArray json() const;

private:
    ErrorCode m_code;
    QString m_message;
    ObjectText m_data;
    QByteArray m_what;
};

} // namespace vantle::ctl
