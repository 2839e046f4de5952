// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QObject>

class QWidget;

namespace vantle {

/// Keeps a window's frame in the host's settings under a name: restores it, as far as the screens of today
/// show it, and stores it whenever it changes.
class RememberedFrame : public QObject
{
    Q_OBJECT

public:
    /// Belongs to the window.
    RememberedFrame(const QString &name, QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void restore();

    QString m_name;
    QWidget *m_window;
};

} // namespace vantle
