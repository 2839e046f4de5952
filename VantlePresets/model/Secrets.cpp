// SPDX-License-Identifier: MIT
#include "VantlePresets/model/Secrets.h"

#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QVariant>

namespace vantle {
namespace {

using Change = QString (*)(const QString &text);

std::shared_ptr<VantlePreset> changed(const VantlePreset &preset, Change changeSecret, Change changeAddress)
{
    auto copy = decodePreset(preset.encoded(document::Format::compact));
    copy->setName(preset.name());
    for (const Field &field : copy->fields()) {
        const Change change = field.isSecret() ? changeSecret : field.isAddress() ? changeAddress : nullptr;
        const char *const key = field.key().data();
        if (change)
            copy->setProperty(key, change(copy->property(key).toString()));
    }
    return copy;
}

} // namespace

QString masked(const QString &secret)
{
    return secret.isEmpty() ? secret : QStringLiteral("********");
}

QString shownValue(const VantlePreset &preset, const Field &field)
{
    const QString text = preset.property(field.key().data()).toString();
    if (field.isSecret())
        return masked(text);
    return field.isAddress() ? shownAddress(text) : text;
}

std::shared_ptr<VantlePreset> withMaskedSecrets(const VantlePreset &preset)
{
    return changed(preset, masked, shownAddress);
}

std::shared_ptr<VantlePreset> withoutSecrets(const VantlePreset &preset)
{
    return changed(
        preset, [](const QString &) { return QString(); }, addressWithoutSecrets);
}

void fillSecrets(VantlePreset &preset, const VantlePreset &other)
{
    if (preset.type() != other.type())
        return;
    for (const Field &field : preset.fields()) {
        const char *const key = field.key().data();
        const QString present = preset.property(key).toString();
        const QString known = other.property(key).toString();
        const bool isLeftOut = field.isSecret()    ? present.isEmpty()
                               : field.isAddress() ? present == addressWithoutSecrets(known)
                                                   : false;
        if (isLeftOut && present != known)
            preset.setProperty(key, known);
    }
}

} // namespace vantle
