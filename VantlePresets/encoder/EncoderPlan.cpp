// SPDX-License-Identifier: MIT
#include "VantlePresets/encoder/EncoderPlan.h"

#include "VantlePresets/encoder/PlanDraft.h"
#include "VantlePresets/model/Secrets.h"

#include <QtCore/QHash>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

namespace vantle {
namespace {

using encoder::Arguments;
using encoder::fieldPath;
using encoder::PlanDraft;

using namespace Qt::StringLiterals;

// ffmpeg silently replaces lower identifiers; 4096 is the program map's, those above are taken or refused.
constexpr qint64 kLowestIdentifier = 32;
constexpr qint64 kHighestIdentifier = 8186;
constexpr qint64 kMapIdentifier = 4096;

struct Identifier
{
    QString owner; ///< "videoSettings.0"
    qint64 value;
};

void planIdentifiers(PlanDraft &draft)
{
    QList<Identifier> identifiers;
    const auto addAll = [&](QLatin1StringView list, const auto &settings) {
        for (qsizetype i = 0; i < settings.size(); ++i)
            identifiers.append({fieldPath(list, i), settings[i]->pid()});
    };
    addAll("videoSettings"_L1, draft.preset.videoSettings());
    addAll("audioSettings"_L1, draft.preset.audioSettings());
    if (!draft.container)
        return;
    if (!draft.container->carriesIdentifiers) {
        draft.note(u"pid"_s, draft.container->name + " has no packet identifiers"_L1);
        return;
    }
    QHash<qint64, QString> owners;
    for (qsizetype stream = 0; stream < identifiers.size(); ++stream) {
        const auto &[owner, value] = identifiers[stream];
        const QString path = owner + ".pid"_L1;
        if (value < kLowestIdentifier || value > kHighestIdentifier || value == kMapIdentifier)
            draft.problem(path, u"%1 is not one of 32 to 8186 without 4096"_s.arg(value));
        else if (draft.container->mixesStreams && owners.contains(value))
            draft.problem(path, u"%1 is taken by %2"_s.arg(value).arg(owners[value]));
        owners.insert(value, owner);
        draft.streams.add({u"-streamid"_s, u"%1:%2"_s.arg(stream).arg(value)});
    }
}

} // namespace

struct EncoderPlan::Data : QSharedData
{
    Arguments arguments;
    QStringList problems;
    QStringList notes;
};

EncoderPlan::EncoderPlan(Data data) : m_data(new Data(std::move(data))) {}
EncoderPlan::EncoderPlan(const EncoderPlan &other) = default;
EncoderPlan &EncoderPlan::operator=(const EncoderPlan &other) = default;
EncoderPlan::~EncoderPlan() = default;

QStringList EncoderPlan::problems() const
{
    return m_data->problems;
}

QStringList EncoderPlan::notes() const
{
    return m_data->notes;
}

QStringList EncoderPlan::arguments() const
{
    return m_data->arguments.texts(true);
}

QStringList EncoderPlan::maskedArguments() const
{
    return m_data->arguments.texts(false);
}

QStringList EncoderPlan::secrets() const
{
    return m_data->arguments.secrets();
}

QByteArray EncoderPlan::withSecretsMasked(QByteArray message) const
{
    for (const QString &secret : secrets())
        message.replace(secret.toUtf8(), masked(secret).toUtf8());
    return message;
}

EncoderPlan planEncoder(const VantlePreset &preset, const EncoderRequest &request)
{
    PlanDraft draft{preset, request, nullptr, {}, {}, {}, {}, {}, {}};
    if (!request.input().isEmpty())
        draft.addInput({u"-i"_s, request.input()});
    encoder::planDestination(draft);
    encoder::planVideo(draft);
    encoder::planAudio(draft);
    planIdentifiers(draft);

    EncoderPlan::Data plan;
    plan.problems = draft.problems;
    if (!plan.problems.isEmpty())
        return EncoderPlan(std::move(plan));
    plan.notes = draft.notes;
    Arguments &out = plan.arguments;
    out.add({u"ffmpeg"_s, u"-hide_banner"_s});
    out.add(draft.input);
    out.add({u"-filter_complex"_s, draft.filters.join(u';')});
    out.add(draft.streams);
    if (request.duration())
        out.add({u"-t"_s, QString::number(*request.duration(), 'f', QLocale::FloatingPointShortest)});
    out.add(draft.destination);
    return EncoderPlan(std::move(plan));
}

QString shellLine(const QStringList &arguments)
{
    static const QRegularExpression harmless(u"\\A[A-Za-z0-9_@%+=:,./-]+\\z"_s);
    QStringList words;
    for (QString text : arguments) {
        if (!harmless.match(text).hasMatch())
            text = u'\'' + text.replace(u'\'', "'\\''"_L1) + u'\'';
        words.append(text);
    }
    return words.join(u' ');
}

} // namespace vantle
