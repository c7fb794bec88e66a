#include "host/ConfigureWindow.hpp"
#include "host/EventLoop.hpp"
#include "host/ModuleLoader.hpp"
#include "host/QtTexts.hpp"
#include "host/SingleInstance.hpp"
#include "host/WindowRun.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/Workspace.hpp"

#include <QtWidgets/QApplication>

namespace host {
namespace {

std::vector<std::string> fullscreenCommand(const CommandLine& line) {
    std::vector<std::string> command{QApplication::applicationFilePath().toStdString(), "--fullscreen"};
    if (line.module) {
        command.insert(command.end(), {"--module", line.module->string()});
    }
    if (!line.device.empty()) {
        command.insert(command.end(), {"--device", line.device});
    }
    if (line.validate) {
        command.emplace_back("--validate");
    }
    if (line.testError) {
        command.insert(command.end(), {"--test-error", std::to_string(line.testError->code) + ":" +
                                                           std::to_string(line.testError->subCode)});
    }
    return command;
}

}  // namespace

void runConfigure(const CommandLine& line, const Showing& showing, const TerminationSignals& signals) {
    SingleInstance instance(SingleInstance::addressOnThisDisplay());
    if (instance.begin() == SingleInstance::Role::Later) {
        return;
    }
    const auto* const module = std::get_if<const platform::SaverModule*>(&showing.saver);
    const QtTexts qtTexts;
    const HostTexts texts(module != nullptr ? bundleOf(**module) : nullptr);
    platform::setWorkspaceTexts([&texts](const std::string& key, const std::string&) { return texts.text(key); });
    const auto hosts =
        findSaverHosts(qEnvironmentVariable("PATH").toStdString(), QApplication::applicationFilePath().toStdString());
    ConfigureWindow window(showing, texts, hosts, fullscreenCommand(line));
    instance.setLaterHandler([&window] { window.present(); });
    platform::setPreferencesFailureHandler([&window](const std::filesystem::path& file) { window.tellNotKept(file); });
    window.show();
    runEventLoop(signals);
    platform::setPreferencesFailureHandler(nullptr);
    instance.setLaterHandler(nullptr);
    platform::setWorkspaceTexts(nullptr);
}

}  // namespace host
