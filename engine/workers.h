/// \file
/// Work on numbered items by several threads: taken in order, worked on side by side, delivered in order.
#pragma once

#include <condition_variable>
#include <exception>
#include <limits>
#include <memory>
#include <mutex>
#include <vector>

namespace vfil::engine {

/// One of the workers of a line. It holds one item at a time, so that their number bounds the memory.
class Worker {
public:
    Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    virtual ~Worker() = default;

    /// Takes the next item. One worker at a time.
    ///
    /// \return false behind the last item
    virtual bool Take() = 0;
    /// Works on the item, beside the others.
    virtual void Work() = 0;
    /// Hands the item on, in the order in which items were taken. One worker at a time.
    virtual void Deliver() = 0;
};

/// Runs workers until there is nothing to take or one of them fails.
class WorkerLine {
public:
    /// When an item fails, those before it are delivered and none behind it.
    ///
    /// \throws what the first of the failed items threw
    void Run(const std::vector<std::unique_ptr<Worker>>& workers);

private:
    void Loop(Worker& worker);
    bool Step(Worker& worker);
    bool Take(Worker& worker, long& item);
    bool WaitForTurn(long item);
    void Fail(long item);

    std::mutex m_taking; ///< held while an item is taken; before m_mutex
    long m_taken = 0;
    bool m_ended = false;

    std::mutex m_mutex;
    std::condition_variable m_turn;
    long m_next = 0; ///< the item to deliver
    long m_failed = std::numeric_limits<long>::max();
    std::exception_ptr m_error;
};

} // namespace vfil::engine
