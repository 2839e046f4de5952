// SPDX-License-Identifier: MIT
#include "VantlePresets/store/PresetImport.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/core/ObjectId.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/model/VantlePresetPrivate.h"
#include "VantlePresets/store/NameRules.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSet>

namespace vantle {
namespace {

QString reasonOf(const std::exception &error)
{
    const auto *decoding = dynamic_cast<const DecodingError *>(&error);
    if (!decoding || decoding->place().isEmpty())
        return escapedControls(decoding ? decoding->description() : QString::fromUtf8(error.what()));
    return escapedControls(decoding->place() + QStringLiteral(": ") + decoding->description());
}

} // namespace

QList<PresetImport> readPresetsToImport(const std::vector<std::filesystem::path> &paths)
{
    QList<PresetImport> imports;
    for (const auto &path : paths) {
        PresetImport import{path, nullptr, {}};
        try {
            import.preset = readPresetFile(path);
            import.preset->moveWithSettingsToThread(QCoreApplication::instance()->thread());
        } catch (const std::exception &error) {
            import.refusal = reasonOf(error);
        }
        imports.append(import);
    }
    return imports;
}

void addImportedPresets(PresetsManager &manager, QList<PresetImport> &imports, NameClash clash)
{
    PresetsList added;
    QList<PresetImport *> additions;
    QSet<QString> names;
    QSet<QUuid> identifiers;
    for (const auto &preset : manager.presets())
        identifiers.insert(preset->id());
    for (PresetImport &import : imports) {
        if (!import.preset)
            continue;
        const QString name = canonicalName(import.preset->name());
        const auto present = manager.presetWithName(import.preset->name());
        if ((present && clash == NameClash::refuse) || names.contains(name)) {
            import.preset.reset();
            import.refusal = QStringLiteral("a preset of this name exists");
            continue;
        }
        names.insert(name);
        QUuid &identifier = VantlePresetPrivate::of(*import.preset).uuid;
        if (identifiers.contains(identifier))
            identifier = newObjectId();
        identifiers.insert(identifier);
        if (present) {
            fillSecrets(*import.preset, *present);
            import.preset = manager.replace(present, import.preset);
            continue;
        }
        added.append(import.preset);
        additions.append(&import);
    }
    if (added.isEmpty())
        return;
    manager.setPresets(manager.presets() + added);
    for (PresetImport *const addition : additions) {
        addition->isOverBrokenFile =
            clash == NameClash::replace && manager.replaceBrokenFile(addition->preset);
        // A copy is no more open than its source.
        manager.saveLike(addition->preset, QString::fromStdString(addition->like.native()));
    }
}

} // namespace vantle
