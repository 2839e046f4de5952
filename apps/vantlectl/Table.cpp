// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Table.h"

#include "VantlePresets/core/Log.h"

#include <algorithm>

#include <wchar.h>

namespace vantle::ctl {

qsizetype columnsOf(const QString &text)
{
    qsizetype columns = 0;
    for (const char32_t c : text.toStdU32String())
        columns += std::max(0, ::wcwidth(static_cast<wchar_t>(c)));
    return columns;
}

QString padded(const QString &text, qsizetype columns, Side side)
{
    const QString blanks(std::max<qsizetype>(0, columns - columnsOf(text)), u' ');
    return side == Side::left ? text + blanks : blanks + text;
}

void Table::add(const QStringList &cells)
{
    QStringList row;
    for (const QString &cell : cells)
        row += escapedControls(cell);
    m_rows += row;
}

QStringList Table::lines() const
{
    QList<qsizetype> widths;
    for (const QStringList &row : m_rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i]));
    }
    QStringList lines;
    for (const QStringList &row : m_rows) {
        QString line = m_indentation;
        for (qsizetype i = 0; i + 1 < row.size(); ++i)
            line += padded(row[i], widths[i], m_rightColumns.contains(i) ? Side::right : Side::left) +
                    QStringLiteral("  ");
        lines += line + row.last();
    }
    return lines;
}

} // namespace vantle::ctl
