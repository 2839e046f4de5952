// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/advice/Advice.h"

#include <QtCore/QHash>
#include <QtCore/QStringList>

namespace vantle {

/// What a form says about one of its places.
struct FieldHint
{
    AdviceSeverity severity = AdviceSeverity::warning; ///< the worst of what is said
    QStringList phrases;                               ///< as Advice::text has them; none when all is well

    friend bool operator==(const FieldHint &, const FieldHint &) = default;
};

/// By place, as Advice::place has it.
using FieldHints = QHash<QString, FieldHint>;

/// The advice on a preset. What concerns a field without a row in the form is in it, too, but shown nowhere:
/// such fields are the host's, and the user could not mend them there.
[[nodiscard]] FieldHints hintsFor(const VantlePreset &preset);

/// The phrases as sentences, one a line: "Host is empty." of "is empty" beside the caption "Host".
[[nodiscard]] QString hintText(const FieldHint &hint, const QString &caption);

} // namespace vantle
