// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/JsonText.h"

#include "VantlePresets/store/PresetsManager.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QTimer>

#include <functional>

namespace vantle::ctl {

/// Tells a client what happens to the list: a message for each preset and burst, whoever made the change, so
/// that whoever applies them to an answer of `list` has the list. What has not been told yet is kept as the
/// presets and files that it concerns, never as messages: a client that reads nothing costs no more than the
/// list is long.
class Notifications : public QObject
{
public:
    using Send = std::function<void(const char *method, const ObjectText &params)>;
    /// Nothing is sent while `canSend` denies; flush() makes up for it.
    Notifications(PresetsManager &manager, std::function<bool()> canSend, Send send);

    /// The preset was changed in place.
    void noteUpdated(const std::shared_ptr<VantlePreset> &preset);
    /// Sends what is due, if the burst is over.
    void flush();
    /// The same in the midst of a burst.
    void flushNow();

private:
    struct Told
    {
        std::shared_ptr<VantlePreset> preset; ///< held, so that no other gets its address meanwhile
        QString name;
    };
    struct FailureState
    {
        PresetsFailure failure;
        bool hasEnded;
    };

    void schedule();
    void remember();
    void noteFailure(const PresetsFailure &failure, bool hasEnded);
    void sendListChanges();
    void sendUpdates();
    void sendFailures();
    void sendChange(const char *what, const QString &name, const VantlePreset &preset,
                    const QString &from = {});

    PresetsManager &m_manager;
    const std::function<bool()> m_canSend;
    const Send m_send;
    QTimer m_burst;
    bool m_isLoadDue = false;
    bool m_isListChanged = false;
    QHash<const VantlePreset *, Told> m_told;      // the list as the client knows it
    QSet<std::shared_ptr<VantlePreset>> m_updated; // not told yet
    QMap<QString, FailureState> m_failures;        // by operation and path, not told yet
};

} // namespace vantle::ctl
