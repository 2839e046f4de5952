// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vantle {

/// Runs tasks on the event loop of one thread, in order. All functions may be called from any thread.
class RunLoop
{
public:
    using Task = std::function<void()>;

    /// The loop of the calling thread.
    static std::shared_ptr<RunLoop> current();
    /// The loop of the main thread; needs a QCoreApplication. When that goes, what still waits is destroyed
    /// there.
    static std::shared_ptr<RunLoop> main();

    RunLoop();
    ~RunLoop();
    RunLoop(const RunLoop &) = delete;
    RunLoop &operator=(const RunLoop &) = delete;

    void post(Task task);
    /// Runs the task after a delay; a delay of zero is post().
    void postDelayed(std::chrono::milliseconds delay, Task task);

    /// Destroys what waits and accepts nothing more. After it returns no task runs, unless it was called by
    /// one.
    void close();

private:
    class Receiver;
    struct State;

    std::shared_ptr<State> m_state;
    Receiver *m_receiver;
};

} // namespace vantle
