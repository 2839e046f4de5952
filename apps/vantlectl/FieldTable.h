// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/core/Field.h"

namespace vantle::document {
class DocumentWriter;
} // namespace vantle::document

namespace vantle::ctl {

/// A field as an assignment names it.
struct AssignableField
{
    QString path;
    Field field;
};

/// What presets of the kind keep and assignments can change.
[[nodiscard]] QList<AssignableField> assignableFields(StreamingType type);

/// "integer", "choice", ...
[[nodiscard]] QString fieldTypeText(const Field &field);

/// Writes the field as an object.
void writeField(document::DocumentWriter &writer, const AssignableField &assignable);

} // namespace vantle::ctl
