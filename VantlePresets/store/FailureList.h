// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsFailure.h"

#include <QtCore/QList>

#include <algorithm>
#include <optional>
#include <utility>

namespace vantle {

/// The failures that last, the oldest first: at most one for each operation on a file.
class FailureList
{
public:
    using Operation = PresetsFailure::Operation;

    [[nodiscard]] const QList<PresetsFailure> &all() const { return m_failures; }

    void add(const PresetsFailure &failure)
    {
        const auto known = find(failure.operation, failure.path);
        if (known == m_failures.end())
            m_failures.append(failure);
        else
            *known = failure;
    }

    std::optional<PresetsFailure> take(Operation operation, const QString &path)
    {
        const auto known = find(operation, path);
        if (known == m_failures.end())
            return std::nullopt;
        PresetsFailure failure = std::move(*known);
        m_failures.erase(known);
        return failure;
    }

private:
    QList<PresetsFailure>::iterator find(Operation operation, const QString &path)
    {
        return std::find_if(m_failures.begin(), m_failures.end(), [&](const PresetsFailure &failure) {
            return failure.operation == operation && failure.path == path;
        });
    }

    QList<PresetsFailure> m_failures;
};

} // namespace vantle
