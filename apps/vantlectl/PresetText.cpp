// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/DocumentError.h"

namespace vantle::ctl {
namespace {

QString counted(qsizetype count, QLatin1StringView one)
{
    return QString::number(count) + u' ' + one + (count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

QString shown(const std::filesystem::path &path)
{
    return escapedControls(QString::fromStdString(path.native()));
}

QString countsOf(const VantlePreset &preset)
{
    return counted(preset.videoSettings().size(), QLatin1StringView("rendition")) + QStringLiteral(", ") +
           counted(preset.audioSettings().size(), QLatin1StringView("track"));
}

Failure::Failure(const std::exception &error) : description(QString::fromUtf8(error.what()))
{
    if (const auto *decoding = dynamic_cast<const DecodingError *>(&error)) {
        place = decoding->place();
        description = decoding->description();
    }
}

QString Failure::message() const
{
    return escapedControls(place.isEmpty() ? description : place + QStringLiteral(": ") + description);
}

} // namespace vantle::ctl
