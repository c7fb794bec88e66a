#pragma once

#include <cstddef>

/// How the settings look to the renderer.
struct QZLCirraneStyle {
    float colors = 0.0F;          ///< 0 to 1
    float brightness = 0.0F;      ///< 0 to 1
    double imageHeight = 0.0;     ///< of the visible region, in noise-texture widths
    double speedMultipler = 1.0;  ///< factor on all three animation rates
};

/// One corner of a quad that is drawn as a triangle strip.
struct QZLLightVertex {
    float screenPosition[2];   ///< clip space
    float texturePosition[2];  ///< normalised coordinates, v growing downward; for the colour pass noise-texture widths
};
static_assert(sizeof(QZLLightVertex) == 16);

/// What the colour pass's fragment function reads, byte for byte.
struct QZLCirraneColorStyle {
    float octaveTransform[4];  ///< two columns: rotation by the fBm angle times 1.97
    float octaves;
    float hueOffset;   ///< turns
    float saturation;  ///< factor, 0.5 to 3
    float fullColor;   ///< 1 - darkening
    float darkening;   ///< 0 to 0.8
    float unused;      ///< padding to 40 bytes, never written
};
static_assert(sizeof(QZLCirraneColorStyle) == 40);
static_assert(offsetof(QZLCirraneColorStyle, octaves) == 16);
static_assert(offsetof(QZLCirraneColorStyle, darkening) == 32);

/// What the light pass's fragment function reads, byte for byte.
struct QZLCirraneLightStyle {
    float texelWidth;  ///< one texel of the intermediate images, in texture coordinates
    float texelHeight;
    float relief;  ///< 0.04 texel heights
    float fade;    ///< 0 to 1
};
static_assert(sizeof(QZLCirraneLightStyle) == 16);
