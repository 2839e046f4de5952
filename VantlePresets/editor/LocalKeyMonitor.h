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

    /// Whether the press comes from a key that is held. The toolkit does not always know: to some window
    /// systems a repetition is a release and a press at once.
    [[nodiscard]] bool isRepetition(const QKeyEvent &press) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    Handler m_handler;
    int m_releasedKey = 0;
    quint64 m_releasedAt = 0; ///< in milliseconds of the window system
};

} // namespace vantle
