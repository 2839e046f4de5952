// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/model/VantlePreset.h"

#include <QtCore/QString>

#include <stdexcept>

namespace vantle::ctl {

/// Why an assignment is not carried out: its path and the reason. Values that may be secret are not echoed.
class AssignmentError : public std::runtime_error
{
public:
    AssignmentError(const QString &path, const QString &reason)
        : std::runtime_error(QString(path + QLatin1StringView(": ") + reason).toStdString())
    {
    }
};

/// One change of a preset, written as
///   FIELD=VALUE                     a field of the preset: portNumber=1936
///   videoSettings.0.FIELD=VALUE     a field of a rendition, counted from 0; audioSettings.1.FIELD=VALUE
///   videoSettings.+                 a new rendition at the end; audioSettings.+
///   videoSettings.1.-               removes a rendition; audioSettings.1.-
/// Enumerations are written as their display strings, channel lists as 0,1, texts
/// also as @FILE or @- (see TextValue.h).
class Assignment
{
public:
    /// Nothing when the text is none of these forms.
    static std::optional<Assignment> parse(const QString &text);

    /// All of a command line's; complains and gives nothing when one has none of these forms.
    static std::optional<QList<Assignment>> parseAll(const std::vector<std::string> &texts);

    /// Throws AssignmentError. Renditions and tracks can be added to and removed from HLS and SRT presets.
    void apply(VantlePreset &preset) const;

    [[nodiscard]] const QString &path() const { return m_path; }
    /// Why the preset holds another number than the one that was assigned; "" when it does not.
    [[nodiscard]] QString limitation(VantlePreset &preset) const;

private:
    enum class Operation { assign, add, remove };

    [[nodiscard]] QObject &target(VantlePreset &preset) const;
    [[nodiscard]] QString hint() const;
    [[nodiscard]] qsizetype index(qsizetype size) const;
    void addTo(VantlePreset &preset) const;
    void removeFrom(VantlePreset &preset) const;
    void requireLists(const VantlePreset &preset) const;

    Operation m_operation = Operation::assign;
    QString m_path;
    QString m_list; ///< "videoSettings", "audioSettings" or ""
    QString m_index;
    QString m_field;
    QString m_value;
};

} // namespace vantle::ctl
