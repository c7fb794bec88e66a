#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace fake {

class CommandBuffer;

/// What was committed to the fake GPU and has not completed, in one line per queue. Whoever commits or completes runs
/// the handlers on its own thread, and on one line never two at once. Thread-safe; no lock is held during handlers.
class Submissions {
public:
    /// The committed buffers of one queue, oldest first. When no thread works on it, the first one has been scheduled.
    class Line {
        friend class Submissions;
        struct Entry {
            std::uint64_t number = 0;
            std::shared_ptr<CommandBuffer> buffer;
        };
        std::deque<Entry> waiting;
        std::optional<std::thread::id> worker;
        bool completesAtOnce = false;
    };

    std::shared_ptr<Line> newLine();

    void commit(Line& line, std::shared_ptr<CommandBuffer> buffer, bool completesAtOnce);
    /// Completes the oldest buffer of all lines; false when there is none.
    bool completeNext(bool succeeded);
    /// Completes all up to this buffer; or only does the work of them when called by a handler of the same line.
    void finish(Line& line, const CommandBuffer& buffer);

    std::size_t count() const;
    /// Forgets everything, handlers unrun.
    void clear();

private:
    using Lock = std::unique_lock<std::mutex>;

    std::shared_ptr<Line> lineOfOldest() const;
    bool completeFirst(Line& line, bool succeeded);
    bool enter(Line& line, Lock& lock);
    void leave(Line& line);
    void scheduleFirst(Line& line, Lock& lock);
    bool waits(const Line& line, const CommandBuffer& buffer) const;
    void workUpTo(const Line& line, const CommandBuffer& buffer) const;

    mutable std::mutex _mutex;
    std::condition_variable _workerLeft;
    std::uint64_t _nextNumber = 0;
    std::vector<std::shared_ptr<Line>> _lines;
};

}  // namespace fake
