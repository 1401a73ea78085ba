// BatchPool.cpp - a ring of chunks between one reader and several threads, who also take turns in writing.
#include "cli/BatchPool.h"

namespace qe {

CBatchPool::CBatchPool(size_t nWorks, CStep Write, std::function<void()> Wake)
    : m_Write(std::move(Write)), m_Wake(std::move(Wake)), m_vSlot(nWorks) {}

CBatchPool::~CBatchPool() {
    Join();
}

void CBatchPool::Start(CStep Answer) {
    m_vThread.emplace_back([this, Answer = std::move(Answer)] { Run(Answer); });
}

CBatchWork* CBatchPool::Free() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_written.wait(lock, [&] { return m_pFailure != nullptr || m_nGiven - m_nWritten < m_vSlot.size(); });
    return m_pFailure != nullptr ? nullptr : &m_vSlot[m_nGiven % m_vSlot.size()].work;
}

void CBatchPool::Give() {
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        ++m_nGiven;
    }
    m_given.notify_one();
}

void CBatchPool::Finish() {
    Join();
    if (m_pFailure != nullptr) std::rethrow_exception(m_pFailure);
}

void CBatchPool::Join() {
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_bEnd = true;
    }
    m_given.notify_all();
    for (std::thread& thread : m_vThread) thread.join();
    m_vThread.clear();
}

// A thread.
void CBatchPool::Run(CStep const& Answer) {
    std::unique_lock<std::mutex> lock(m_mutex);
    try {
        while (true) {
            m_given.wait(lock, [&] { return m_bEnd || m_pFailure != nullptr || m_nTaken < m_nGiven; });
            if (m_pFailure != nullptr || m_nTaken == m_nGiven) return;
            CSlot& slot = m_vSlot[m_nTaken++ % m_vSlot.size()];
            lock.unlock();
            Answer(slot.work);
            lock.lock();
            slot.bAnswered = true;
            WriteAnswered(lock);
        }
    } catch (...) {
        if (!lock.owns_lock()) lock.lock();
        if (m_pFailure == nullptr) m_pFailure = std::current_exception();
    }
    lock.unlock();
    m_given.notify_all();
    m_written.notify_all();
    m_Wake();
}

// Whoever finds the next chunk in order answered writes it, and those behind it that have become ready meanwhile. A
// write that throws leaves m_bWriting: there is nothing to write behind it.
void CBatchPool::WriteAnswered(std::unique_lock<std::mutex>& lock) {
    while (!m_bWriting && m_pFailure == nullptr && m_vSlot[m_nWritten % m_vSlot.size()].bAnswered) {
        CSlot& slot = m_vSlot[m_nWritten % m_vSlot.size()];
        m_bWriting = true;
        lock.unlock();
        m_Write(slot.work);
        lock.lock();
        slot.bAnswered = m_bWriting = false;
        ++m_nWritten;
        m_written.notify_one();
    }
}

} // namespace qe
