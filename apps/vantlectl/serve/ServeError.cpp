// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/ServeError.h"

namespace vantle::ctl {
namespace {

const char *kindOf(ErrorCode code)
{
    switch (code) {
    case ErrorCode::parseError:
        return "parseError";
    case ErrorCode::invalidRequest:
        return "invalidRequest";
    case ErrorCode::methodNotFound:
        return "methodNotFound";
    case ErrorCode::invalidParams:
        return "invalidParams";
    case ErrorCode::internalError:
        return "internalError";
    case ErrorCode::requestCancelled:
        return "requestCancelled";
    case ErrorCode::notFound:
        return "notFound";
    case ErrorCode::conflict:
        return "conflict";
    case ErrorCode::invalidName:
        return "invalidName";
    case ErrorCode::invalidValue:
        return "invalidValue";
    case ErrorCode::invalidDocument:
        return "invalidDocument";
    case ErrorCode::notSaved:
        return "notSaved";
    case ErrorCode::unavailable:
        return "unavailable";
    case ErrorCode::fileFailed:
        return "fileFailed";
    case ErrorCode::notPlanned:
        return "notPlanned";
    case ErrorCode::ending:
        return "ending";
    case ErrorCode::tooMany:
        return "tooMany";
    }
    return "internalError";
}

} // namespace

QByteArray ServeError::json() const
{
    ObjectText data;
    data.text("kind", QString::fromLatin1(kindOf(m_code))).members(m_data);
    return ObjectText()
        .number("code", static_cast<int>(m_code))
        .text("message", m_message)
        .raw("data", data.json())
        .json();
}

} // namespace vantle::ctl
