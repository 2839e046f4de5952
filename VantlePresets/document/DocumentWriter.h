// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/Export.h"
#include "VantlePresets/document/DocumentFormat.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

namespace vantle::document {

/// Writes one JSON text, members in the order of the calls. Keys are literals of the caller's.
class DocumentWriter
{
public:
    virtual ~DocumentWriter() = default;

    virtual void beginObject() = 0;
    virtual void endObject() = 0;
    virtual void beginArray() = 0;
    virtual void endArray() = 0;
    virtual void key(const char *name) = 0;

    virtual void integer(const char *name, qint64 value) = 0;
    /// Throws EncodingError when the value is infinite or not a number. The text reads back as the same
    /// value; 30 is "30.0".
    virtual void number(const char *name, double value) = 0;
    virtual void boolean(const char *name, bool value) = 0;
    /// A lone surrogate, which UTF-8 cannot hold, is written as U+FFFD.
    virtual void string(const char *name, QAnyStringView value) = 0;
    /// An element of the array that is open.
    virtual void string(QStringView value) = 0;
    virtual void integers(const char *name, const QList<qint64> &values) = 0;

protected:
    DocumentWriter() = default;
    DocumentWriter(const DocumentWriter &) = default;
    DocumentWriter &operator=(const DocumentWriter &) = default;
};

/// The UTF-8 text of what `write` writes. Passes on what it throws.
[[nodiscard]] VANTLE_PRESETS_EXPORT QByteArray encode(Format format,
                                                      const std::function<void(DocumentWriter &)> &write);

/// A hash of what `write` writes: equal for equal texts, without making the text, if strings of one key come
/// in one encoding. Of this process only, not to be stored. Passes on what `write` throws.
[[nodiscard]] std::size_t hashOf(const std::function<void(DocumentWriter &)> &write);

} // namespace vantle::document
