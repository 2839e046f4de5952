// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QObject>

#include <functional>

class QKeyEvent;

namespace vantle {

/// Sees every key press that is delivered to the application, before any window does, for as long as it
/// lives.
class LocalKeyMonitor : public QObject
{
    Q_OBJECT

public:
    /// Answers whether it swallows the event.
    using Handler = std::function<bool(const QKeyEvent &event)>;

    explicit LocalKeyMonitor(Handler handler);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Handler m_handler;
};

} // namespace vantle
