#include "platform/Workspace.hpp"

#include "platform/AddressHandler.hpp"
#include "platform/AddressText.hpp"
#include "platform/Clock.hpp"
#include "platform/FileContents.hpp"
#include "platform/Paths.hpp"
#include "platform/StringFormat.hpp"
#include "platform/ui/Message.hpp"

#include <unistd.h>

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <array>
#include <ctime>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

namespace platform {
namespace {

namespace fs = std::filesystem;

struct Text {
    const char* key;
    const char* english;
};

constexpr Text mailTooLong{"WORKSPACE_MAIL_TOO_LONG", "This mail is too long to be handed to a mail program."};
constexpr Text mailNotOpened{"WORKSPACE_MAIL_NOT_OPENED", "No mail program could be started for this mail."};
constexpr Text mailKept{"WORKSPACE_MAIL_KEPT_FORMAT",
                        "Its text is on the clipboard, and in this file, from where you can send it yourself:\n%@"};
constexpr Text mailOnClipboard{"WORKSPACE_MAIL_ON_CLIPBOARD_FORMAT",
                               "Its text is on the clipboard: please paste it somewhere before you copy anything else. "
                               "It could not be written into a file as well:\n%@ (%@)"};
constexpr Text pageTooLong{"WORKSPACE_PAGE_TOO_LONG", "This address is too long to be handed to a program."};
constexpr Text pageNotOpened{"WORKSPACE_PAGE_NOT_OPENED", "No program could be started for this address."};
constexpr Text pageOnClipboard{"WORKSPACE_PAGE_ON_CLIPBOARD_FORMAT", "It is on the clipboard:\n%@"};

enum class Reason { TooLong, NotOpened };

std::function<void(const std::string&)>& messageSink() {
    static auto* const sink = new std::function<void(const std::string&)>;
    return *sink;
}

WorkspaceTexts& texts() {
    static auto* const lookUp = new WorkspaceTexts;
    return *lookUp;
}

std::string localized(const Text& text) {
    return texts() ? texts()(text.key, text.english) : text.english;
}

void tell(const std::string& message) {
    messageSink() ? messageSink()(message) : showMessage(message);
}

void copyToClipboard(const std::string& text) {
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

std::string date() {
    const std::time_t now = clock().calendarSeconds();
    std::tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d-%H%M%S", &parts);
    return text.data();
}

/// No other process makes one of that name.
fs::path unusedFile(const fs::path& directory) {
    const std::string name = "mail-" + date() + "-" + std::to_string(getpid());
    fs::path file = directory / (name + ".txt");
    std::error_code error;
    for (int number = 2; fs::exists(file, error); ++number) {
        file = directory / (name + "-" + std::to_string(number) + ".txt");
    }
    return file;
}

/// Writes the text into a new file, whose path it sets in any case.
std::error_code writeNewFile(const std::string& text, fs::path& file) {
    const fs::path directory = stateDirectory() / "cirrane";
    std::error_code error;
    if (fs::create_directories(directory, error)) {
        fs::permissions(directory, fs::perms::owner_all, error);
    }
    file = unusedFile(directory);
    return error ? error : replaceFile(file, std::as_bytes(std::span(text)), Readers::OwnerAlone);
}

std::string keepMail(const std::string& address) {
    const std::string text = mailText(address);
    copyToClipboard(text);
    fs::path file;
    const std::error_code error = writeNewFile(text, file);
    return error ? formatted(localized(mailOnClipboard), file.string(), error.message())
                 : formatted(localized(mailKept), file.string());
}

/// Nobody is there any more to be told, and a clipboard goes with its program.
void keepQuietly(const std::string& address) {
    if (isMailAddress(address)) {
        fs::path file;
        writeNewFile(mailText(address), file);
    }
}

void keep(const std::string& address, Reason reason) {
    if (isMailAddress(address)) {
        const std::string where = keepMail(address);
        tell(localized(reason == Reason::TooLong ? mailTooLong : mailNotOpened) + "\n\n" + where);
        return;
    }
    copyToClipboard(address);
    constexpr std::size_t shownBytes = 500;
    const std::string shown = address.size() > shownBytes ? address.substr(0, shownBytes) + "…" : address;
    tell(localized(reason == Reason::TooLong ? pageTooLong : pageNotOpened) + "\n\n" +
         formatted(localized(pageOnClipboard), shown));
}

}  // namespace

void openURL(const std::optional<std::string>& address) {
    if (!address || !isAddress(*address)) {
        return;
    }
    if (address->size() > longestOpenedAddress) {
        keep(*address, Reason::TooLong);
        return;
    }
    const auto keepInDoubt = [given = *address](HandlerDoubt doubt) {
        doubt == HandlerDoubt::Failed ? keep(given, Reason::NotOpened) : keepQuietly(given);
    };
    if (!startAddressHandler(*address, keepInDoubt)) {
        keep(*address, Reason::NotOpened);
    }
}

void setWorkspaceMessageSink(std::function<void(const std::string& message)> sink) {
    messageSink() = std::move(sink);
}

void setWorkspaceTexts(WorkspaceTexts lookUp) {
    texts() = std::move(lookUp);
}

}  // namespace platform
