#pragma once

#include "platform/Error.hpp"
#include "platform/HostView.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace platform {

/// One running saver in one view. Main thread only; destroying it stops and detaches it.
class SaverSession {
public:
    SaverSession(const SaverSession&) = delete;
    SaverSession& operator=(const SaverSession&) = delete;
    virtual ~SaverSession() = default;

    /// Attaches on first use and starts to animate. The error, if it cannot.
    virtual std::optional<Error> startAnimation() = 0;
    virtual void stopAnimation() = 0;
    /// Lets go of the view and the GPU. The next start attaches anew, at the size that the view has then; seed, phases
    /// and hue carry on.
    virtual void detach() = 0;

    /// The number that this run's clouds grew from.
    virtual std::uint32_t seed() const = 0;
    /// The size of the images that the picture is composed in, in pixels; 0 x 0 before the start.
    virtual std::uint64_t intermediateWidth() const = 0;
    virtual std::uint64_t intermediateHeight() const = 0;

protected:
    SaverSession() = default;
};

/// What a module offers its host. Returned by the entry point that the bundle's Info.json names.
struct SaverModule {
    static constexpr std::uint32_t currentVersion = 1;

    std::uint32_t version = currentVersion;
    /// A session for a view, or null. Never throws.
    std::unique_ptr<SaverSession> (*createSession)(std::shared_ptr<HostView> view, bool isPreview,
                                                   std::int64_t screenIndex) noexcept = nullptr;
    /// Tells every session that the stored settings were changed from outside.
    void (*settingsChanged)() noexcept = nullptr;
};

using SaverModuleEntryPoint = const SaverModule* (*)() noexcept;

}  // namespace platform
