// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/serve/ServedStore.h"

#include "VantlePresets/check/ConnectionCheck.h"

#include <functional>
#include <map>

namespace vantle::ctl {

/// The checks of servers that go on while other requests are carried out. Main thread only.
class Checks : public QObject
{
public:
    /// Called with what answers a request, once for each that was begun.
    using Answer = std::function<void(const QByteArray &body)>;
    explicit Checks(Answer answer) : m_answer(std::move(answer)) {}

    /// Begins the check of a request; throws ServeError when it can't be.
    void begin(ServedStore &store, const QByteArray &id, Params &params);
    /// Ends the one of the request, if there is one.
    void end(const QByteArray &id, const ServeError &reason);
    void endAll(const ServeError &reason);
    [[nodiscard]] bool isEmpty() const { return m_running.empty(); }

private:
    void finish(const QByteArray &id, bool isGood, const QStringList &notes);

    const Answer m_answer;
    std::map<QByteArray, std::unique_ptr<ConnectionCheck>> m_running; // by the request's id
};

} // namespace vantle::ctl
