// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetsManager.h"

#include <QtWidgets/QWidget>

class QToolButton;
class QPushButton;

namespace vantle {

class FormLabel;

/// Two lines above the form that say what the store could not save, delete or load, why, and what to do about
/// it, and a button to try again. They take their space always and are empty while all is well; nothing in
/// the window moves when the strip speaks.
///
/// Of several problems the last one is shown, with their number; the tool tip has all of them, in full.
class ProblemStrip : public QWidget
{
    Q_OBJECT

public:
    explicit ProblemStrip(const std::shared_ptr<PresetsManager> &manager, QWidget *parent = nullptr);

    /// Says it until the user closes it; nothing can be tried again.
    void addNotice(const QString &text);
    void clearNotices();

    /// What is shown, "" while all is well.
    [[nodiscard]] QString text() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showProblems();
    [[nodiscard]] QStringList problems() const;
    void tryAgain();

    std::shared_ptr<PresetsManager> m_manager;
    QStringList m_notices;
    FormLabel *m_text;
    QPushButton *m_tryAgain;
    QToolButton *m_close;
};

} // namespace vantle
