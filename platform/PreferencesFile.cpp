#include "platform/PreferencesFile.hpp"

#include "platform/FileContents.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QSettings>
#include <QStringList>
#include <QUtf8StringView>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace platform {
namespace {

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

/// Keeps other writers of a directory's files waiting for the life of this object, where the file system offers such a
/// lock. None is left behind by a process that dies; for one that stands still nobody waits for ever.
class WritersLock {
public:
    explicit WritersLock(const std::filesystem::path& directory)
        : _descriptor(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (flock(_descriptor, LOCK_EX | LOCK_NB) != 0 && (errno == EINTR || errno == EWOULDBLOCK)) {
            if (std::chrono::steady_clock::now() > end) {
                _isHeldByAnother = true;
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    ~WritersLock() { close(_descriptor); }
    WritersLock(const WritersLock&) = delete;
    WritersLock& operator=(const WritersLock&) = delete;

    bool isHeldByAnother() const { return _isHeldByAnother; }

private:
    const int _descriptor;
    bool _isHeldByAnother = false;
};

/// The file's bytes, no bytes when there is no file; nothing when it is no file that can be read, or out of all size.
std::optional<std::string> formerBytes(const std::filesystem::path& path) {
    constexpr std::uintmax_t maximumBytes = std::uintmax_t{16} * 1024 * 1024;
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        return std::string();
    }
    std::string bytes;
    const bool isRead = std::filesystem::is_regular_file(status) && !readFile(path, maximumBytes, bytes);
    return isRead ? std::optional(std::move(bytes)) : std::nullopt;
}

/// QSettings takes a file of the same size and time, in milliseconds, for the one that it knows; and many a file
/// system's clock goes in larger steps.
void makeNewer(const std::filesystem::path& path, const std::filesystem::path& former) {
    using std::chrono::milliseconds;
    std::error_code error;
    const auto before = std::filesystem::last_write_time(former, error);
    const auto next = std::chrono::floor<milliseconds>(before) + milliseconds(1);
    if (!error && std::filesystem::last_write_time(path, error) < next) {
        std::filesystem::last_write_time(path, next, error);
    }
}

/// Renames the file to the other's path, and gives it that one's permissions.
bool putInPlace(const std::filesystem::path& path, const std::filesystem::path& former) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(former, error);
    if (std::filesystem::exists(status)) {
        std::filesystem::permissions(path, status.permissions(), error);
        makeNewer(path, former);
    }
    std::filesystem::rename(path, former, error);
    return !error;
}

/// The file that the path leads to, which need not exist.
std::filesystem::path resolved(const std::filesystem::path& path) {
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target;
}

/// An unquoted text with commas arrives as a list, of variants where one of its parts begins as foreign values do.
std::string text(const QVariant& value) {
    const bool isList = value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList;
    return (isList ? value.toStringList().join(',') : value.toString()).toStdString();
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

/// A damaged line may have one that QSettings itself would write otherwise.
bool isKey(const QString& text) {
    return !text.isEmpty() && !text.startsWith('/') && !text.endsWith('/') && !text.contains("//");
}

PreferencesFile::Texts texts(const QSettings& settings) {
    PreferencesFile::Texts result;
    for (const QString& key : settings.allKeys()) {
        if (isKey(key)) {
            result[key.toStdString()] = text(settings.value(key));
        }
    }
    return result;
}

bool hasKeysOnly(const QSettings& settings) {
    const QStringList keys = settings.allKeys();
    return std::all_of(keys.begin(), keys.end(), isKey);
}

void apply(const PreferencesFile::Changes& changes, QSettings& settings) {
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
}

/// Leaves nothing but keys and their texts.
void removeDamage(QSettings& settings) {
    const PreferencesFile::Texts kept = texts(settings);
    settings.clear();
    apply({kept.begin(), kept.end()}, settings);
}

enum class Damage { None, Removed };

/// A file beside another that may take its place; it goes at the end of this object. QSettings works on it, not on the
/// file itself: on a full disk QSettings writes half a file and calls that a success, or keeps the changes in mind and
/// fails all who read that file later.
class Draft {
public:
    explicit Draft(const std::filesystem::path& file) {
        // Never the same again, as QSettings remembers what it read under a name.
        static std::atomic<unsigned> count{0};
        const std::string unique = "." + std::to_string(getpid()) + "-" + std::to_string(++count);
        _written = file.string() + unique + ".new";
        _checked = file.string() + unique + ".part";
    }
    ~Draft() {
        std::error_code error;
        std::filesystem::remove(_written, error);
        std::filesystem::remove(_checked, error);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const std::filesystem::path& path() const { return _checked; }

    /// Writes the former bytes with the changes. What the draft then says; none when it does not read back so.
    std::optional<PreferencesFile::Texts> merge(const std::string& former, const PreferencesFile::Changes& changes,
                                                Damage damage) const {
        if (replaceFile(_written, std::as_bytes(std::span(former)))) {
            return {};
        }
        PreferencesFile::Texts wanted;
        {
            QSettings settings(qString(_written), QSettings::IniFormat);
            if (damage == Damage::Removed) {
                removeDamage(settings);
            }
            if (!hasKeysOnly(settings)) {
                return {};  // what QSettings writes for the others is damage again
            }
            apply(changes, settings);
            wanted = texts(settings);
            settings.sync();
        }
        std::error_code error;
        std::filesystem::rename(_written, _checked, error);
        return !error && PreferencesFile(_checked).read() == wanted ? std::optional(wanted) : std::nullopt;
    }

private:
    std::filesystem::path _written;
    std::filesystem::path _checked;
};

}  // namespace

std::optional<PreferencesFile::Texts> PreferencesFile::read() const {
    const auto bytes = formerBytes(_path);
    if (!bytes) {
        return std::nullopt;
    }
    if (bytes->empty() || !isText(*bytes)) {
        return Texts{};
    }
    const QSettings settings(qString(_path), QSettings::IniFormat);
    return settings.status() != QSettings::AccessError ? std::optional(texts(settings)) : std::nullopt;
}

std::optional<PreferencesFile::Texts> PreferencesFile::write(const Changes& changes) const {
    if (!mayBeWritten()) {
        return {};
    }
    const WritersLock lock(_path.parent_path());
    const std::filesystem::path target = resolved(_path);
    const auto former = formerBytes(_path);
    if (lock.isHeldByAnother() || !former) {
        return {};
    }
    if (isSound(*former)) {
        const Draft draft(target);
        if (auto written = draft.merge(*former, changes, Damage::None)) {
            return putInPlace(draft.path(), target) ? std::move(written) : std::nullopt;
        }
    }  // else a full disk, or something in the file that QSettings takes as sound but does not write again
    const Draft draft(target);
    auto written = draft.merge(isText(*former) ? *former : "", changes, Damage::Removed);
    return written && keepAside(*former) && putInPlace(draft.path(), target) ? std::move(written) : std::nullopt;
}

bool PreferencesFile::mayBeWritten() const {
    std::error_code error;
    const std::filesystem::path directory = _path.parent_path();
    std::filesystem::create_directories(directory, error);
    return permitted(directory, W_OK | X_OK) &&
           (!permitted(_path, F_OK) ||
            (std::filesystem::is_regular_file(_path, error) && permitted(_path, R_OK | W_OK)));
}

bool PreferencesFile::keepAside(const std::string& damaged) const {
    const std::filesystem::path aside = _path.string() + ".damaged";
    if (replaceFile(aside, std::as_bytes(std::span(damaged)))) {
        return false;
    }
    std::error_code error;
    std::filesystem::permissions(aside, std::filesystem::status(_path, error).permissions(), error);
    return true;
}

}  // namespace platform
