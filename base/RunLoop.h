// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

class QThread;

namespace vantle {

/// Runs tasks on the event loop of one thread, in order. When the thread ends, the main thread's loop takes
/// over. All functions may be called from any thread.
class RunLoop
{
public:
    using Task = std::function<void()>;

    /// A loop of the calling thread, or of the main one when no event loop runs on the calling thread.
    static std::shared_ptr<RunLoop> current();
    /// The loop of the main thread, one for each QCoreApplication. When that goes, what still waits is
    /// destroyed there; without one, what is posted is destroyed at once.
    static std::shared_ptr<RunLoop> main();

    /// On the thread that owns what the tasks use.
    explicit RunLoop(QThread *thread);
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
