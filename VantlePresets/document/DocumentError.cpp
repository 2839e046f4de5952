// SPDX-License-Identifier: MIT
#include "VantlePresets/document/DocumentError.h"

namespace vantle {
namespace {

QString join(const QString &place, const QString &description)
{
    return place.isEmpty() ? description : place + QLatin1StringView(": ") + description;
}

} // namespace

struct DecodingError::Details
{
    QString place;
    QString description;
};

DecodingError::DecodingError(const QString &place, const QString &description)
    : std::runtime_error(join(place, description).toStdString()),
      d(std::make_shared<Details>(Details{place, description}))
{
}

DecodingError::~DecodingError() = default;

const QString &DecodingError::place() const noexcept
{
    return d->place;
}

const QString &DecodingError::description() const noexcept
{
    return d->description;
}

QString DecodingError::message() const
{
    return join(d->place, d->description);
}

} // namespace vantle
