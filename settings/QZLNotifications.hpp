#pragma once

/// Posted when the stored settings have changed; every view hears it. Main thread.
inline constexpr const char* QZLConfigurationStoredNotification = "QZLConfigurationStoredNotification";
