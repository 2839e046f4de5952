// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QString>

#include <string>

namespace vantle::ctl {

/// Why no command gives a preset the trimmed name; "" when one may. What would be printed with escapes is
/// refused, since nobody could type what he reads.
[[nodiscard]] QString nameFault(const QString &name);

/// The trimmed name for a preset, and a note of what was trimmed. Throws Refusal when it is one with a fault,
/// or no UTF-8.
[[nodiscard]] QString nameForPreset(const std::string &text);

/// A preset's name as it was given. Throws Refusal when it is no UTF-8: another preset could have the name
/// that replacement characters make of it.
[[nodiscard]] QString nameArgument(const std::string &text);

} // namespace vantle::ctl
