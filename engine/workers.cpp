/// \file
/// The line of workers.
#include "engine/workers.h"

#include <thread>

namespace vfil::engine {

void WorkerLine::Fail(long item)
{
    {
        const std::lock_guard lock(m_mutex);
        if (item >= m_failed) return;
        m_failed = item;
        m_error = std::current_exception();
    }
    m_turn.notify_all();
}

bool WorkerLine::Take(Worker& worker, long& item)
{
    const std::lock_guard lock(m_taking);
    item = m_taken;
    {
        const std::lock_guard state(m_mutex);
        m_ended = m_ended || m_failed <= item;
    }
    if (m_ended) return false;
    try {
        m_ended = !worker.Take();
    } catch (...) {
        Fail(item);
        m_ended = true;
    }
    if (!m_ended) ++m_taken;
    return !m_ended;
}

// False when an earlier item failed: then the turn never comes.
bool WorkerLine::WaitForTurn(long item)
{
    std::unique_lock lock(m_mutex);
    m_turn.wait(lock, [&] { return m_next == item || m_failed < item; });
    return m_next == item;
}

bool WorkerLine::Step(Worker& worker)
{
    long item = 0;
    if (!Take(worker, item)) return false;
    try {
        worker.Work();
        if (!WaitForTurn(item)) return false;
        worker.Deliver();
    } catch (...) {
        Fail(item);
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        ++m_next;
    }
    m_turn.notify_all();
    return true;
}

void WorkerLine::Loop(Worker& worker)
{
    while (Step(worker)) {
    }
}

void WorkerLine::Run(const std::vector<std::unique_ptr<Worker>>& workers)
{
    std::vector<std::thread> threads;
    try {
        for (std::size_t i = 1; i < workers.size(); ++i)
            threads.emplace_back([this, &worker = *workers[i]] { Loop(worker); });
    } catch (const std::system_error&) {
        // Where the system gives fewer threads, fewer do it.
    }
    Loop(*workers.front());
    for (std::thread& thread : threads)
        thread.join();
    if (m_error) std::rethrow_exception(m_error);
}

} // namespace vfil::engine
