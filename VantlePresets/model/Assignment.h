// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/model/VantlePreset.h"

#include <optional>
#include <stdexcept>

namespace vantle {

/// Why an assignment is not carried out: its path and the reason. Values that may be secret are not echoed.
class VANTLE_PRESETS_EXPORT AssignmentError : public std::runtime_error
{
public:
    /// what() is "path: reason" in UTF-8.
    AssignmentError(const QString &path, const QString &reason);
    ~AssignmentError() override;
    /// @cond
    AssignmentError(const AssignmentError &) noexcept = default;
    AssignmentError &operator=(const AssignmentError &) noexcept = default;
    /// @endcond
};

/// One change of a preset, written as
///   FIELD=VALUE                     a field of the preset: portNumber=1936
///   videoSettings.0.FIELD=VALUE     a field of a rendition, counted from 0; audioSettings.1.FIELD=VALUE
///   videoSettings.+                 a new rendition at the end; audioSettings.+
///   videoSettings.1.-               removes a rendition; audioSettings.1.-
/// A position may stand in brackets, as errors and advice name it: videoSettings[0].FIELD=VALUE.
/// Fields are named by their keys (see Field), choices are written as their display strings, channel lists as
/// 0,1. A small value; what changes a preset is called on the preset's thread.
class VANTLE_PRESETS_EXPORT Assignment
{
public:
    /// Nothing when the text is none of these forms.
    [[nodiscard]] static std::optional<Assignment> parse(const QString &text);

    /// What stands before "=": the place that is changed, its position without brackets.
    [[nodiscard]] const QString &path() const;
    /// What stands behind "="; can be a secret.
    [[nodiscard]] const QString &value() const;
    /// Whether the value is that of a text field, which presets of some kind have.
    [[nodiscard]] bool takesText() const;
    /// The same change with another value.
    [[nodiscard]] Assignment withValue(const QString &value) const;

    /// Throws AssignmentError, and then changes nothing. Renditions and tracks can be added to and removed
    /// from HLS and SRT presets. A track that becomes the default is the only one.
    void apply(VantlePreset &preset) const;
    /// Why the preset holds another number than the one that was assigned; "" when it does not.
    [[nodiscard]] QString limitation(const VantlePreset &preset) const;
    /// Throws AssignmentError when the preset's files do not hold the field: its value would last as long as
    /// the object only.
    void requireKept(const VantlePreset &preset) const;

private:
    struct Q_DECL_HIDDEN Data;
    explicit Assignment(std::shared_ptr<const Data> data);

    std::shared_ptr<const Data> d;
};

} // namespace vantle
