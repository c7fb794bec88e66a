#version 450
#extension GL_GOOGLE_include_directive : require

// Places the colour pass's quad. Its texture positions lie on the noise plane, in noise-texture widths, y up.
//
// Seen from near, the region would hold less than one cloud, and from far so many that they turn into a texture. So
// more of the plane is shown around the region's centre than the region at zoom 0, 1.6 times its height, and less at
// zoom 1, 0.6 times. The centre drifts as it should; to the eye that is slower from near and faster from far.

layout(set = 0, binding = 0) uniform ColorStyle {
    vec4 octaveTransform;  // two columns
    float octaves;
    float hueOffset;   // turns
    float saturation;  // factor
    float fullColor;
    float darkening;
} style;

layout(set = 1, binding = 0) uniform texture2D noiseTexture;
layout(set = 2, binding = 0) uniform sampler repeatingSampler;

#include "Detail.glsl"
#include "Palette.glsl"
#define VARYING out
#include "ColorFrame.glsl"
#include "Quad.glsl"
#include "Relief.glsl"

// Cells of the first octave per noise-texture width: about 2.8 in the picture's height at the usual zoom.
const float cellsPerTextureWidth = 22.5;

const float usualHeight = 0.124;  // of the region at the usual zoom
const float growth = 0.42;        // as powers of how much nearer than usual the region is seen
const float gainOfDetail = 0.30;  // more of fine detail from near, less from far

// Each octave is this much finer than the one before it (the length of the transform's columns).
const float octaveRatio = 1.97;

// 1 when the style asks for that octave, counted from 1.
float isWanted(float octave) {
    return clamp(style.octaves - octave + 1.0, 0.0, 1.0);
}

// How much of an octave to show where a pixel spans so many of its cells: all of it at 8.4 pixels to the cell, none at
// 2.8, so that nothing shimmers.
float visibleShare(float cellsPerPixel) {
    return clamp(1.5 - 4.2 * cellsPerPixel, 0.0, 1.0);
}

// Wisps come in more slowly, from 12 pixels to the cell to 17.
float shareOfWisps(float cellsPerPixel) {
    return clamp(3.4 - 41.0 * cellsPerPixel, 0.0, 1.0);
}

// From the second octave to the wisps.
vec4 sharesInMass(float cellsPerPixel, float fineness) {
    float thirdCellsPerPixel = cellsPerPixel * octaveRatio * octaveRatio;
    float fourthCellsPerPixel = thirdCellsPerPixel * octaveRatio;
    float wispCellsPerPixel = fourthCellsPerPixel * octaveRatio;
    return vec4(0.145 + 0.145 * fineness,
                0.15 * fineness * isWanted(3.0) * visibleShare(thirdCellsPerPixel),
                0.08 * fineness * isWanted(4.0) * visibleShare(fourthCellsPerPixel),
                0.03 * fineness * isWanted(4.0) * shareOfWisps(wispCellsPerPixel));
}

// Mixed from the first numbers of the texture.
int saltOfNoise() {
    int salt = 0;
    for (int x = 0; x < 4; ++x) {
        float number = texelFetch(sampler2D(noiseTexture, repeatingSampler), ivec2(x, 0), 0).r;
        salt = 255 * salt + int(round(127.0 * number));
    }
    return salt;
}

void main() {
    vec2 position = placedCorner();
    vec2 center = 0.5 * (quad.corners[0].zw + quad.corners[3].zw);
    float height = quad.corners[3].w - quad.corners[0].w;
    float nearness = usualHeight / height;
    float scale = pow(nearness, growth);
    cellPosition = cellsPerTextureWidth * (center + scale * (position - center));

    float cellsInHeight = cellsPerTextureWidth * scale * height;
    slopeGain = cellsInHeight / unitRise;
    octaveShares = sharesInMass(cellsInHeight / float(imageRows), pow(nearness, gainOfDetail));
    octaveTransform = mat2(style.octaveTransform.xy, style.octaveTransform.zw);
    fullColor = style.fullColor;
    darkening = style.darkening;
    salt = saltOfNoise();
    palette = paletteOf(style.hueOffset, style.saturation);
}
