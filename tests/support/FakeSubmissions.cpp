#include "tests/support/FakeSubmissions.hpp"

#include "tests/support/FakeCommandBuffer.hpp"

#include <algorithm>
#include <utility>

namespace fake {

std::shared_ptr<Submissions::Line> Submissions::newLine() {
    const std::lock_guard lock(_mutex);
    _lines.push_back(std::make_shared<Line>());
    return _lines.back();
}

void Submissions::commit(Line& line, std::shared_ptr<CommandBuffer> buffer, bool completesAtOnce) {
    {
        Lock lock(_mutex);
        line.waiting.push_back({_nextNumber++, std::move(buffer)});
        line.completesAtOnce = line.completesAtOnce || completesAtOnce;
        if (line.waiting.size() == 1 && !line.worker.has_value()) {
            enter(line, lock);
            scheduleFirst(line, lock);
            leave(line);
        }
    }
    if (completesAtOnce) {
        completeFirst(line, true);
    }
}

bool Submissions::completeNext(bool succeeded) {
    while (const std::shared_ptr<Line> line = lineOfOldest()) {
        if (completeFirst(*line, succeeded)) {
            return true;
        }
    }
    return false;
}

void Submissions::finish(Line& line, const CommandBuffer& buffer) {
    while (waits(line, buffer)) {
        if (!completeFirst(line, true)) {
            workUpTo(line, buffer);
            return;
        }
    }
}

std::size_t Submissions::count() const {
    const std::lock_guard lock(_mutex);
    std::size_t count = 0;
    for (const std::shared_ptr<Line>& line : _lines) {
        count += line->waiting.size();
    }
    return count;
}

void Submissions::clear() {
    std::vector<std::shared_ptr<Line>> lines;
    std::vector<Line::Entry> entries;
    const std::lock_guard lock(_mutex);
    lines.swap(_lines);
    for (const std::shared_ptr<Line>& line : lines) {
        std::move(line->waiting.begin(), line->waiting.end(), std::back_inserter(entries));
        line->waiting.clear();
    }
}

/// Leaves out lines that the calling thread works on already.
std::shared_ptr<Submissions::Line> Submissions::lineOfOldest() const {
    const std::lock_guard lock(_mutex);
    std::shared_ptr<Line> oldest;
    for (const std::shared_ptr<Line>& line : _lines) {
        if (!line->waiting.empty() && line->worker != std::this_thread::get_id() &&
            (oldest == nullptr || line->waiting.front().number < oldest->waiting.front().number)) {
            oldest = line;
        }
    }
    return oldest;
}

bool Submissions::completeFirst(Line& line, bool succeeded) {
    Lock lock(_mutex);
    if (!enter(line, lock)) {
        return false;
    }
    bool completed = false;
    while (!line.waiting.empty() && (!completed || line.completesAtOnce)) {
        std::shared_ptr<CommandBuffer> buffer = std::move(line.waiting.front().buffer);
        line.waiting.pop_front();
        lock.unlock();
        buffer->complete(succeeded);
        buffer.reset();
        completed = true;
        lock.lock();
        scheduleFirst(line, lock);
    }
    line.completesAtOnce = line.completesAtOnce && !line.waiting.empty();
    leave(line);
    return completed;
}

/// Waits for another thread's work on the line; false when it is the calling thread's own.
bool Submissions::enter(Line& line, Lock& lock) {
    if (line.worker == std::this_thread::get_id()) {
        return false;
    }
    _workerLeft.wait(lock, [&line] { return !line.worker.has_value(); });
    line.worker = std::this_thread::get_id();
    return true;
}

void Submissions::leave(Line& line) {
    line.worker.reset();
    _workerLeft.notify_all();
}

void Submissions::scheduleFirst(Line& line, Lock& lock) {
    if (!line.waiting.empty()) {
        const std::shared_ptr<CommandBuffer> first = line.waiting.front().buffer;
        lock.unlock();
        first->schedule();
        lock.lock();
    }
}

bool Submissions::waits(const Line& line, const CommandBuffer& buffer) const {
    const std::lock_guard lock(_mutex);
    return std::any_of(line.waiting.begin(), line.waiting.end(),
                       [&buffer](const Line::Entry& entry) { return entry.buffer.get() == &buffer; });
}

void Submissions::workUpTo(const Line& line, const CommandBuffer& buffer) const {
    const std::lock_guard lock(_mutex);
    for (const Line::Entry& entry : line.waiting) {
        entry.buffer->work();
        if (entry.buffer.get() == &buffer) {
            return;
        }
    }
}

}  // namespace fake
