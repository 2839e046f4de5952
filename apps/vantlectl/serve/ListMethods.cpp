// SPDX-License-Identifier: MIT
#include "apps/vantlectl/serve/Methods.h"

#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/store/NameRules.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

/// A new preset that has to be in its file; it is taken back, and notSaved thrown, when it is not.
void requireSaved(ServedStore &store, const std::shared_ptr<VantlePreset> &preset)
{
    const auto failure = store.saveFailure(*preset);
    if (!failure)
        return;
    const QString name = preset->name();
    store.manager().remove(preset);
    store.settle();
    throw ServeError(ErrorCode::notSaved, *failure, ObjectText().text("name", name));
}

/// A preset's name, kind and stamp.
QByteArray identityOf(ServedStore &store, const VantlePreset &preset)
{
    return ObjectText()
        .text("name", preset.name())
        .text("type", displayName(preset.type()))
        .text("stamp", QString::fromLatin1(store.stampOf(preset)))
        .json();
}

} // namespace

void addToStore(ServedStore &store, const std::shared_ptr<VantlePreset> &preset)
{
    PresetsManager &manager = store.manager();
    const QString wanted = preset->name();
    manager.setPresets(manager.presets() + PresetsList{preset});
    manager.save(preset);
    store.settle();
    requireSaved(store, preset);
    if (preset->name() == wanted)
        return;
    manager.remove(preset); // another process was faster, and the preset got the next free name
    store.settle();
    requireUsable(wanted, true);
}

QByteArray addPreset(ServedStore &store, Params &params)
{
    const StreamingType type = kindOf(params.text("kind"));
    const auto name = params.optionalText("name");
    params.requireNoOthers();
    if (name) {
        const auto preset = makePreset(type, freeName(store, *name));
        addToStore(store, preset);
        return identityOf(store, *preset);
    }
    const auto preset = store.manager().addNewPreset(type);
    store.settle();
    requireSaved(store, preset);
    return identityOf(store, *preset);
}

QByteArray duplicatePreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    params.requireNoOthers();
    const auto source = store.preset(name);
    requireUsable(source->name(), false); // as the copy's name would be
    const auto copy = store.manager().duplicate(source);
    store.settle();
    requireSaved(store, copy);
    return identityOf(store, *copy);
}

QByteArray renamePreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const QString to = params.text("to");
    const auto stamp = params.optionalText("stamp");
    params.requireNoOthers();
    PresetsManager &manager = store.manager();
    const auto preset = store.preset(name);
    store.requireStamp(*preset, stamp, false);
    const QString from = preset->name();
    const QString trimmed = trimmedName(to);
    const auto other = manager.presetWithName(trimmed);
    requireUsable(trimmed, other && other != preset);
    if (!manager.rename(preset, from, trimmed))
        requireUsable(trimmed, true);
    const QString wanted = preset->name();
    store.settle();
    if (manager.rowOf(preset) < 0)
        store.throwConflict(from, false);
    const auto failure = store.saveFailure(*preset);
    if (!failure && preset->name() == wanted)
        return identityOf(store, *preset);
    manager.rename(preset, preset->name(), from);
    store.settle();
    if (!failure)
        requireUsable(wanted, true);
    throw ServeError(ErrorCode::notSaved, *failure, ObjectText().text("name", wanted));
}

QByteArray removePreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const auto stamp = params.optionalText("stamp");
    params.requireNoOthers();
    PresetsManager &manager = store.manager();
    const auto preset = store.preset(name);
    store.requireStamp(*preset, stamp, false);
    const QString removed = preset->name();
    manager.remove(preset);
    store.settle();
    if (manager.presetWithName(removed)) // with what others have written into the file since it was read
        store.throwConflict(removed, false);
    for (const PresetsFailure &failure : manager.failures()) {
        if (failure.operation == PresetsFailure::Operation::deletion && failure.name == removed)
            throw ServeError(ErrorCode::notSaved, failure.reason, ObjectText().text("name", removed));
    }
    return ObjectText().text("name", removed).json();
}

} // namespace vantle::ctl
