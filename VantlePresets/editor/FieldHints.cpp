// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/FieldHints.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// The verbs of phrases that speak of the field without naming it.
constexpr std::array kVerbs{"is"_L1, "must"_L1, "begins"_L1, "names"_L1, "holds"_L1, "has"_L1};
/// Words that keep their small letter.
constexpr std::array kNames{"ffmpeg"_L1, "pbkeylen"_L1, "backup=1"_L1};

/// Places in a document, which count from 0, as people count what the form shows.
QString inWords(QString phrase)
{
    static const QRegularExpression place(u"(video|audio)Settings\\[(\\d+)\\]"_s);
    for (auto match = place.match(phrase); match.hasMatch(); match = place.match(phrase)) {
        const QString number = QString::number(match.captured(2).toLongLong() + 1);
        const QString words = match.captured(1) == "video"_L1
                                  ? QCoreApplication::translate("vantle::FieldHints", "video %1").arg(number)
                                  : QCoreApplication::translate("vantle::FieldHints", "track %1").arg(number);
        phrase.replace(match.capturedStart(), match.capturedLength(), words);
    }
    return phrase;
}

template <class Words>
bool contains(const Words &words, const QString &word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

QString sentence(const QString &phrase, const QString &caption)
{
    QString text = inWords(phrase);
    const QString first = text.section(u' ', 0, 0);
    if (contains(kVerbs, first) && !caption.isEmpty())
        text = caption + u' ' + text;
    else if (!contains(kNames, first))
        text[0] = text[0].toUpper();
    return text + u'.';
}

} // namespace

FieldHints hintsFor(const VantlePreset &preset)
{
    FieldHints hints;
    for (const Advice &advice : adviceFor(preset)) {
        FieldHint &hint = hints[advice.place];
        if (advice.severity == AdviceSeverity::error)
            hint.severity = AdviceSeverity::error;
        if (!hint.phrases.contains(advice.text)) // both sides of a picture are judged
            hint.phrases.append(advice.text);
    }
    return hints;
}

QString hintText(const FieldHint &hint, const QString &caption)
{
    QStringList sentences;
    for (const QString &phrase : hint.phrases)
        sentences.append(sentence(phrase, caption));
    return sentences.join(u'\n');
}

} // namespace vantle
