// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QList>
#include <QtCore/QStringList>

namespace vantle::ctl {

/// How many columns of a terminal the text takes: two for wide characters, none for combining ones.
[[nodiscard]] qsizetype columnsOf(const QString &text);

enum class Side { left, right };

/// The text at one side of a field of so many columns.
[[nodiscard]] QString padded(const QString &text, qsizetype columns, Side side = Side::left);

/// Rows of cells, written in columns of which some are aligned to the right. Control characters come out as
/// escapes.
class Table
{
public:
    explicit Table(const QString &indentation, const QList<qsizetype> &rightColumns = {})
        : m_indentation(indentation), m_rightColumns(rightColumns)
    {
    }

    void add(const QStringList &cells);
    [[nodiscard]] QStringList lines() const;

private:
    QString m_indentation;
    QList<qsizetype> m_rightColumns;
    QList<QStringList> m_rows;
};

} // namespace vantle::ctl
