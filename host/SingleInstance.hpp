#pragma once

#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>
#include <functional>
#include <string>
#include <utility>

namespace host {

/// Lets one process of the user stand on a display for all that are started later. What cannot be found out or set up
/// leaves each process alone in its world. Main thread, with the application object made.
class SingleInstance {
public:
    /// Where this user's processes on this display find each other. Empty where there is no place for it.
    static std::string addressOnThisDisplay();

    explicit SingleInstance(std::string address) : _address(std::move(address)) {}
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    enum class Role {
        First,  ///< this process is told of those that come
        Later,  ///< the first one has been told of this process
    };
    /// Asks, and waits for the answer; a first one that stands still does not hold this one up for long.
    Role begin();

    /// Called from the event loop for each later process.
    void setLaterHandler(std::function<void()> handler) { _laterCame = std::move(handler); }

private:
    bool tellFirst() const;
    void answer(QLocalSocket& later);

    const std::string _address;
    std::function<void()> _laterCame;
    QLocalServer _server;
};

}  // namespace host
