// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

namespace vantle::ctl {

/// The value that stands for standard input.
inline constexpr QLatin1StringView kStandardInputText("@-");

/// The text that an assignment's value means, so that secrets need not stand on a command line, where every
/// user of the machine can read them: "@FILE" is a file's one line and "@-" that of standard input, without
/// its line break; "@@" begins a text with "@". What holds nothing is refused: a command that was to print
/// the secret has failed. Throws std::runtime_error with the reason.
[[nodiscard]] QString textValue(const QString &value);

} // namespace vantle::ctl
