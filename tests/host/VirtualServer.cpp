#include "tests/host/VirtualServer.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>

namespace fake {

VirtualServer::VirtualServer(const std::string& size)
    : _process(endingWithTest(
                   {"/usr/bin/Xvfb", "-displayfd", "1", "-screen", "0", size + "x24", "-nolisten", "tcp", "-noreset"}),
               {}, Output::Files) {
    if (!eventually([this] { return _process.standardOutput().ends_with('\n') || !_process.isRunning(); }) ||
        !_process.isRunning()) {
        ADD_FAILURE() << "Xvfb did not start";
        return;
    }
    _name = ":" + _process.standardOutput();
    _name.pop_back();
}

VirtualServer::~VirtualServer() {
    _process.sendSignal(SIGCONT);
    _process.sendSignal(SIGTERM);
    _process.waitForEnd();
}

void VirtualServer::useAsDisplay() const {
    setenv("DISPLAY", _name.c_str(), 1);
}

void VirtualServer::freeze() const {
    _process.sendSignal(SIGSTOP);
}

}  // namespace fake
