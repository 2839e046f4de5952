// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/NearestText.h"

#include <algorithm>

namespace vantle::advice {

qsizetype lettersBetween(QStringView a, QStringView b)
{
    QList<QList<qsizetype>> table(a.size() + 1, QList<qsizetype>(b.size() + 1));
    for (qsizetype i = 0; i <= a.size(); ++i) {
        for (qsizetype j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                table[i][j] = i + j;
                continue;
            }
            const qsizetype kept = table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, kept});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
        }
    }
    return table[a.size()][b.size()];
}

QString nearestText(QStringView text, const QStringList &choices)
{
    constexpr qsizetype kLongest = 64; // no choice is half as long
    if (text.size() > kLongest)
        return {};
    const QString folded = text.toString().toCaseFolded();
    QString nearest;
    qsizetype least = 0;
    for (const QString &choice : choices) {
        const qsizetype changes = lettersBetween(folded, choice.toCaseFolded());
        const bool isLike = changes <= choice.size() / 2;
        if (isLike && (nearest.isEmpty() || changes < least)) {
            nearest = choice;
            least = changes;
        }
    }
    return nearest;
}

} // namespace vantle::advice
