// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace vantle {

/// Something that the store could not do with a preset's file. Plain values; see PresetsManager::failures().
struct PresetsFailure
{
    /// What was tried.
    enum class Operation {
        load,     ///< reading the file; its preset is not listed, or stays as it was
        save,     ///< writing the preset's file
        deletion, ///< deleting the file, which is still there
    };

    Operation operation = Operation::load; ///< that failed
    QString name;                          ///< the preset's or file's, without the extension
    QString path;                          ///< absolute, of the file
    QString reason; ///< of the operating system or the document, as in the log's line: "Permission denied"

    /// The same operation on the same file, for the same reason.
    friend bool operator==(const PresetsFailure &, const PresetsFailure &) = default;
};

} // namespace vantle

Q_DECLARE_METATYPE(vantle::PresetsFailure)
