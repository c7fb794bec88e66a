#include "platform/PreferencesFile.hpp"

#include "platform/FileContents.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <QLockFile>
#include <QSettings>
#include <QStringList>
#include <QUtf8StringView>

#include <algorithm>
#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace platform {
namespace {

constexpr std::chrono::seconds repairPatience(5);

QString qString(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

bool permitted(const std::filesystem::path& path, int mode) {
    return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0;
}

bool isText(std::string_view bytes) {
    return bytes.find('\0') == std::string_view::npos &&
           QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

bool isSoundLine(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
    return line.empty() || line.front() == ';' ||
           (line.front() == '[' ? line.find(']') != std::string_view::npos
                                : line.front() != '=' && line.find('=') != std::string_view::npos);
}

/// Judged here because QSettings reports a damaged file only to the first who reads it in a process. Stricter than it,
/// which costs a file of unusual but good form no more than a copy.
bool isSound(std::string_view bytes) {
    for (std::string_view rest = bytes; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (!isSoundLine(rest.substr(0, end))) {
            return false;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return isText(bytes);
}

/// An unquoted text with commas arrives as a list.
std::string text(const QVariant& value) {
    return (value.typeId() == QMetaType::QStringList ? value.toStringList().join(',') : value.toString()).toStdString();
}

/// Unlike QSettings, leaves a section of the key's name as it is.
void removeKeyAlone(QSettings& settings, const QString& key) {
    std::vector<std::pair<QString, QVariant>> section;
    settings.beginGroup(key);
    for (const QString& child : settings.allKeys()) {
        section.emplace_back(child, settings.value(child));
    }
    settings.endGroup();
    settings.remove(key);
    settings.beginGroup(key);
    for (const auto& [child, value] : section) {
        settings.setValue(child, value);
    }
    settings.endGroup();
}

}  // namespace

std::optional<PreferencesFile::Texts> PreferencesFile::read() const {
    if (!isText(fileContents(_path))) {
        return Texts{};
    }
    const QSettings settings(qString(_path), QSettings::IniFormat);
    Texts texts;
    for (const QString& key : settings.allKeys()) {
        if (!key.isEmpty()) {  // a damaged line
            texts[key.toStdString()] = text(settings.value(key));
        }
    }
    return settings.status() != QSettings::AccessError ? std::optional(texts) : std::nullopt;
}

bool PreferencesFile::write(const Changes& changes) const {
    return mayBeWritten() && (isSound(fileContents(_path)) || repair()) && merge(changes);
}

/// Asked before QSettings is, which would keep changes that it cannot write and fail the next who only reads.
bool PreferencesFile::mayBeWritten() const {
    std::error_code error;
    const std::filesystem::path directory = _path.parent_path();
    std::filesystem::create_directories(directory, error);
    return permitted(directory, W_OK | X_OK) &&
           (!permitted(_path, F_OK) ||
            (std::filesystem::is_regular_file(_path, error) && permitted(_path, R_OK | W_OK)));
}

/// Copies the file aside and leaves what makes sense of it.
bool PreferencesFile::repair() const {
    QLockFile lock(qString(_path) + ".repair");
    if (!lock.tryLock(std::chrono::milliseconds(repairPatience).count())) {
        return false;
    }
    if (isSound(fileContents(_path))) {
        return true;  // another process was faster
    }
    const auto texts = read();
    std::error_code error;
    if (!texts || !std::filesystem::copy_file(_path, _path.string() + ".damaged",
                                              std::filesystem::copy_options::overwrite_existing, error)) {
        return false;
    }
    QSettings settings(qString(_path), QSettings::IniFormat);
    settings.clear();
    settings.sync();
    return settings.status() != QSettings::AccessError && merge(Changes(texts->begin(), texts->end()));
}

bool PreferencesFile::merge(const Changes& changes) const {
    QSettings settings(qString(_path), QSettings::IniFormat);
    for (const auto& [key, changed] : changes) {
        if (key.find_first_not_of('/') == std::string::npos) {
            continue;  // no name for a key: the file would not read again
        }
        if (changed) {
            settings.setValue(QString::fromStdString(key), QString::fromStdString(*changed));
        } else {
            removeKeyAlone(settings, QString::fromStdString(key));
        }
    }
    settings.sync();
    return settings.status() != QSettings::AccessError;
}

}  // namespace platform
