// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/ServedStore.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/store/PresetsFolder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QCryptographicHash>
#include <QtCore/QUuid>

#include <algorithm>

namespace vantle::ctl {

using namespace Qt::StringLiterals;

ServedStore::ServedStore(const QString &dataDirectory)
    : m_dataDirectory(dataDirectory), m_salt(QUuid::createUuid().toRfc4122()),
      m_manager([this] { return QStringList{m_dataDirectory}; })
{
}

std::shared_ptr<VantlePreset> ServedStore::preset(const QString &name) const
{
    if (auto found = m_manager.presetWithName(name))
        return found;
    throw ServeError(ErrorCode::notFound, "there is no preset named \""_L1 + name + u'"',
                     ObjectText().text("name", name));
}

std::filesystem::path ServedStore::fileOf(const VantlePreset &preset) const
{
    return fileSystemPath(presetsFolderPath(m_dataDirectory) + u'/' + preset.name() + ".json"_L1);
}

QByteArray ServedStore::stampOf(const VantlePreset &preset) const
{
    // Salted, since a document can hold a secret that is short enough to be found from its hash.
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(m_salt);
    hash.addData(preset.encoded(document::Format::compact));
    constexpr qsizetype kDigits = 32;
    return hash.result().toHex().first(kDigits);
}

ObjectText ServedStore::presentation(const VantlePreset &preset, bool reveal) const
{
    constexpr auto kFormat = document::Format::compact;
    return ObjectText()
        .text("name", preset.name())
        .text("type", displayName(preset.type()))
        .text("stamp", QString::fromLatin1(stampOf(preset)))
        .raw("document", reveal ? preset.encoded(kFormat) : withMaskedSecrets(preset)->encoded(kFormat));
}

void ServedStore::requireStamp(const VantlePreset &preset, const std::optional<QString> &stamp,
                               bool reveal) const
{
    if (stamp && stamp->toUtf8() != stampOf(preset))
        throwConflict(preset.name(), reveal);
}

void ServedStore::throwConflict(const QString &name, bool reveal) const
{
    const auto present = m_manager.presetWithName(name);
    throw ServeError(
        ErrorCode::conflict,
        present ? u"the preset was changed meanwhile"_s : u"the preset was removed meanwhile"_s,
        ObjectText()
            .text("name", name)
            .raw("present", present ? presentation(*present, reveal).json() : QByteArray("null")));
}

void ServedStore::settle()
{
    do {
        m_manager.waitForFileTasks();
        QCoreApplication::processEvents();
    } while (m_manager.hasPendingSaves());
}

std::optional<QString> ServedStore::saveFailure(const VantlePreset &preset) const
{
    const QList<PresetsFailure> failures = m_manager.failures();
    const auto found = std::find_if(failures.begin(), failures.end(), [&](const PresetsFailure &failure) {
        return failure.operation == PresetsFailure::Operation::save && failure.name == preset.name();
    });
    return found == failures.end() ? std::nullopt : std::optional(found->reason);
}

} // namespace vantle::ctl
