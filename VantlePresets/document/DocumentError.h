// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"

#include <QtCore/QString>

#include <memory>
#include <stdexcept>

namespace vantle {

/// Why a preset document can't be read: a reason, and the place that it concerns.
class VANTLE_PRESETS_EXPORT DecodingError : public std::runtime_error
{
public:
    /// See place() and description().
    DecodingError(const QString &place, const QString &description);
    ~DecodingError() override;
    /// @cond
    DecodingError(const DecodingError &) noexcept = default;
    DecodingError &operator=(const DecodingError &) noexcept = default;
    /// @endcond

    /// A key path ("videoSettings[1].codec"), "line 12, column 7" for text that is not JSON, or "" for
    /// the document as a whole. Columns count characters, both numbers from 1.
    [[nodiscard]] const QString &place() const noexcept;
    /// What is wrong there, without the place.
    [[nodiscard]] const QString &description() const noexcept;

    /// Place and description as people read them: "portNumber: expected an integer, found a string".
    /// what() is the same in UTF-8.
    [[nodiscard]] QString message() const;

private:
    struct Q_DECL_HIDDEN Details;
    std::shared_ptr<const Details> d; // copies of an exception must not throw
};

/// Why a record can't be written as JSON; in practice a frame rate that is infinite or not a number.
class VANTLE_PRESETS_EXPORT EncodingError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace vantle
