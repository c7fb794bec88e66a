#include "tests/foundation/BundleProbe.hpp"

#include "foundation/QZLBundle.hpp"

const BundleProbe bundleProbe = {&QZLSaverBundle, &QZLLocalizedSaverString, &QZLLocalizedVistashadeString,
                                 &QZLSaverBundleString};
