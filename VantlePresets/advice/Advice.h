// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/core/EnumerationTable.h"
#include "VantlePresets/document/DocumentError.h"
#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QString>

namespace vantle {

/// How much a piece of advice weighs.
enum class AdviceSeverity {
    error,   ///< the stream can't be sent, or the service refuses it
    warning, ///< it can, but not as well as it could or not everywhere
};

/// The two with the words shown to users, "error" and "warning".
[[nodiscard]] VANTLE_PRESETS_EXPORT const EnumerationTable<AdviceSeverity> &adviceSeverities();

/// What should be otherwise in a preset before it goes on air.
struct VANTLE_PRESETS_EXPORT Advice
{
    AdviceSeverity severity; ///< how much it weighs
    QString place;           ///< "videoSettings[1].bitRate", as DecodingError::place() writes it
    QString text;            ///< what would be right, in one English sentence without its full stop
    QString source;          ///< where the rule comes from: the key of one of adviceSources()

    /// All four parts.
    friend bool operator==(const Advice &, const Advice &) = default;
};

/// Where rules come from.
struct VANTLE_PRESETS_EXPORT AdviceSource
{
    QString key;   ///< "Y-help"
    QString where; ///< a web page or a document
};

/// All sources, sorted by key. Service rules are those of November 2026.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<AdviceSource> adviceSources();

/// Judges a preset by the rules of its service, its protocol and its container. Looks at nothing but the
/// preset; no server is contacted. No text holds a stream key, a password, a passphrase or an address.
/// The connection comes first, then the renditions, then the tracks, in their order; empty for a preset
/// that can go on air as it is. On the thread that the preset belongs to.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<Advice> adviceFor(const VantlePreset &preset);

/// What only the document tells, since the preset no longer shows it: a "type" or "streamingProtocol" that
/// is none of the known ones and reads as the first of them, with the known one that is nearest. Throws
/// DecodingError when the text is no JSON object with the keys in question. Callable from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<Advice> adviceForTexts(QByteArrayView document);

/// On the document as a whole: adviceForTexts(), then the rest, judged as if the nearest known protocol stood
/// there; of an unknown kind nothing else can be told. Throws DecodingError as decodePreset() does. Callable
/// from any thread.
[[nodiscard]] VANTLE_PRESETS_EXPORT QList<Advice> adviceForDocument(QByteArrayView document);

} // namespace vantle
