#pragma once

#include "platform/Error.hpp"

#include <cstdint>

/// The codes of the render host's errors, by what failed. They stand in saved error reports and keep their numbers.
enum QZLRenderHostErrorCode : std::int64_t {
    QZLErrorBundle = 100,
    QZLErrorShaderLibrary = 101,
    QZLErrorVertexFunction = 102,
    QZLErrorFragmentFunction = 103,
    QZLErrorComputeFunction = 104,
    QZLErrorRenderPipeline = 105,
    QZLErrorComputePipeline = 106,
    QZLErrorTexture = 107,
    QZLErrorBuffer = 108,
    QZLErrorDisplayLinkCreate = 200,
    QZLErrorDisplayLinkCallback = 201,
    QZLErrorMetalLayer = 301,
    QZLErrorCommandQueue = 303,
    QZLErrorRenderPassDescriptor = 304,
};

/// Leaves an error of that code in the place, if one is given.
void QZLReportError(platform::ErrorPlace place, QZLRenderHostErrorCode code, std::uint64_t subCode);
