// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Positions.h"
#include "apps/vantlectl/serve/Methods.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/model/StreamAddress.h"

#include <QtCore/QMap>
#include <QtCore/QVariant>

#include <utility>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Wish
{
    std::optional<QList<Assignment>> assignments;
    std::optional<QByteArray> document;
    std::optional<QString> stamp;
    bool reveal = false;
};

[[noreturn]] void refuseValue(const QString &field, const QString &reason)
{
    throw ServeError(ErrorCode::invalidValue, field + ": "_L1 + reason, ObjectText().text("field", field));
}

Wish wishOf(Params &params)
{
    Wish wish;
    if (const auto texts = params.optionalTexts("assignments"))
        wish.assignments = assignmentsOf(*texts);
    wish.document = params.optionalObject("document");
    wish.stamp = params.optionalText("stamp");
    wish.reveal = params.flag("reveal");
    params.requireNoOthers();
    if (wish.assignments.has_value() == wish.document.has_value())
        throw ServeError(ErrorCode::invalidParams, u"either \"assignments\" or \"document\" is wanted"_s);
    if (wish.document && !wish.stamp)
        throw ServeError(ErrorCode::invalidParams,
                         u"a whole document needs the \"stamp\" of the one that it is based on"_s);
    return wish;
}

/// Puts secrets back where the document has what is shown in their place: whoever edits a masked document
/// does not lose them.
void unmask(VantlePreset &wanted, const VantlePreset &present)
{
    for (const Field &field : wanted.fields()) {
        if (!field.isSecret() && !field.isAddress())
            continue;
        const char *const key = field.key().data();
        const QString text = wanted.property(key).toString();
        if (!text.contains(masked(u"any"_s)))
            continue;
        if (text != shownValue(present, field))
            refuseValue(QString::fromLatin1(field.key()), u"the mask of a secret is no value"_s);
        wanted.setProperty(key, present.property(key));
    }
}

/// The texts of the preset, its renditions and tracks that hold control characters, by their paths.
QMap<QString, QString> textsWithControls(const VantlePreset &preset)
{
    QMap<QString, QString> texts;
    const auto collect = [&](const QObject &record, const QList<Field> &fields, const QString &place) {
        for (const Field &field : fields) {
            const QString text = field.type() == Field::Type::text
                                     ? record.property(field.key().data()).toString()
                                     : QString();
            if (hasControls(text))
                texts.insert(place + field.key(), text);
        }
    };
    collect(preset, preset.fields(), {});
    for (qsizetype i = 0; i < preset.videoSettings().size(); ++i)
        collect(*preset.videoSettings()[i], VideoSettings::fields(), u"videoSettings.%1."_s.arg(i));
    for (qsizetype i = 0; i < preset.audioSettings().size(); ++i)
        collect(*preset.audioSettings()[i], AudioSettings::fields(), u"audioSettings.%1."_s.arg(i));
    return texts;
}

/// What the preset's file has brought may stay.
void refuseNewControls(const VantlePreset &wanted, const VantlePreset &present)
{
    const QMap<QString, QString> known = textsWithControls(present);
    const QMap<QString, QString> texts = textsWithControls(wanted);
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        if (known.value(text.key()) != text.value())
            refuseValue(text.key(), u"can't hold a line break or another control character"_s);
    }
}

/// The preset as it would be, and what was limited.
std::pair<std::shared_ptr<VantlePreset>, QStringList> changed(const VantlePreset &preset, const Wish &wish)
{
    if (wish.assignments) {
        auto wanted = copyOf(preset);
        QStringList limitations = applyAssignments(*wish.assignments, *wanted);
        for (const Assignment &assignment : *wish.assignments) {
            try {
                assignment.requireKept(*wanted);
            } catch (const AssignmentError &error) {
                throw ServeError(ErrorCode::invalidValue, QString::fromUtf8(error.what()),
                                 ObjectText().text("field", assignment.path()));
            }
        }
        return {wanted, limitations};
    }
    auto wanted = presetOfDocument(*wish.document);
    wanted->setName(preset.name());
    if (wanted->metaObject() != preset.metaObject())
        refuseValue(u"type"_s, displayName(preset.type()) + " presets can't become "_L1 +
                                   displayName(wanted->type()) + "; add another one"_L1);
    unmask(*wanted, preset);
    refuseNewControls(*wanted, preset);
    return {wanted, {}};
}

/// What became of a save.
enum class Outcome { saved, overtaken, gone };

/// Throws notSaved.
Outcome save(ServedStore &store, const std::shared_ptr<VantlePreset> &preset)
{
    PresetsManager &manager = store.manager();
    bool isOvertaken = false;
    const auto connection =
        QObject::connect(&manager, &PresetsManager::presetUpdated,
                         [&](const auto &updated) { isOvertaken = isOvertaken || updated == preset; });
    manager.saveUnlessChanged(preset);
    store.settle();
    QObject::disconnect(connection);
    if (manager.rowOf(preset) < 0)
        return Outcome::gone;
    if (isOvertaken)
        return Outcome::overtaken;
    const auto failure = store.saveFailure(*preset);
    if (failure || manager.hasUnsavedEdits(preset))
        throw ServeError(ErrorCode::notSaved,
                         failure.value_or(u"another process has changed the file, which can't be read now"_s),
                         ObjectText().text("name", preset->name()));
    return Outcome::saved;
}

/// The same, without anything left of what could not be saved.
Outcome saveOrUndo(ServedStore &store, const std::shared_ptr<VantlePreset> &preset,
                   const VantlePreset &before)
{
    try {
        return save(store, preset);
    } catch (const ServeError &) {
        updatePreset(*preset, before);
        throw;
    }
}

void requirePositions(const Positions &positions, const VantlePreset &preset, const Wish &wish,
                      const ServedStore &store)
{
    try {
        positions.require(preset, *wish.assignments);
    } catch (const AssignmentError &) {
        store.throwConflict(preset.name(), wish.reveal);
    }
}

} // namespace

QByteArray setPreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const Wish wish = wishOf(params);
    const auto preset = store.preset(name);
    store.requireStamp(*preset, wish.stamp, wish.reveal);
    const Positions positions(*preset);
    for (;;) {
        const auto before = copyOf(*preset);
        const auto [wanted, limitations] = changed(*preset, wish);
        updatePreset(*preset, *wanted);
        switch (saveOrUndo(store, preset, *before)) {
        case Outcome::saved:
            store.edited(preset);
            return ObjectText()
                .text("name", preset->name())
                .text("stamp", QString::fromLatin1(store.stampOf(*preset)))
                .texts("notes", limitations)
                .json();
        case Outcome::gone:
            store.throwConflict(name, wish.reveal);
        case Outcome::overtaken: // assignments go on top of what another process has written
            if (wish.stamp)
                store.throwConflict(name, wish.reveal);
            requirePositions(positions, *preset, wish, store);
        }
    }
}

} // namespace vantle::ctl
