// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QTimer>

class QWidget;

namespace vantle {

/// Keeps a window's frame, and whether it is maximized, in the host's settings under a name: restores it, as
/// far as the screens of today show it, and stores it when it has changed.
class RememberedFrame : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RememberedFrame)

public:
    /// Belongs to the window.
    RememberedFrame(const QString &name, QWidget *window);
    ~RememberedFrame() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void restore();
    void store();

    QString m_name;
    QWidget *m_window;
    QRect m_frame; ///< of the window while it is not maximized
    bool m_isMaximized = false;
    QTimer m_settled; ///< a drag is many changes, and each would be a file written
};

} // namespace vantle
