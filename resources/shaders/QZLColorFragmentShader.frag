#version 450
#extension GL_GOOGLE_include_directive : require

// The colour pass: clouds from noise, as a colour and as a height for the light pass.
//
// A slow, coarse "weather" shapes the large masses, fans the hues and makes everything flow. Four octaves of noise lie
// over it. What the three finer ones add carries a signed weight that follows the mass: on the heights they are rounded
// billows with dark creases, in the valleys (weight negative) bright threads, and in between, where the weight passes
// through zero, there is haze.

layout(location = 0) in vec2 texturePosition;  // on the noise plane, in noise-texture widths
layout(location = 1) flat in float regionHeight;  // in noise-texture widths
layout(location = 2) flat in float fineness;      // a factor for fine detail
layout(location = 0) out vec4 outColor;        // display-coded
layout(location = 1) out float outHeight;      // 0 to 1

layout(set = 0, binding = 0) uniform ColorStyle {
    vec4 octaveTransform;  // two columns: from the sample position of one octave to that of the next
    float octaves;
    float hueOffset;   // turns
    float saturation;  // factor
    float fullColor;   // 1 - darkening
    float darkening;   // how much of the depths' light is taken away, 0 to 0.8
} style;

layout(set = 1, binding = 0) uniform texture2D noiseTexture;
layout(set = 2, binding = 0) uniform sampler repeatingSampler;

#include "GradientNoise.glsl"
#include "OkLab.glsl"
#include "Relief.glsl"
#include "CloudColor.glsl"

// Cells of the first octave per noise-texture width: about 2.8 in the picture's height at the usual zoom.
const float cellsPerTextureWidth = 0.088 * noiseTexelsPerSide;

// Each octave is this much finer than the one before it (the length of the transform's columns).
const float octaveRatio = 1.97;

const mat2 eighthTurn = mat2(0.7071, 0.7071, -0.7071, 0.7071);  // keeps the weather's lattice off the octaves' own
const float weatherCellsPerCell = 0.31;
const vec2 weatherOrigin = vec2(3.7, 11.2);  // any place where it does not start on a corner of the lattice

// An octave on its way through the four: where its sample was taken and what was found.
struct Octave {
    vec2 position;      // before displacement, in cells of this octave
    vec2 displacement;  // by the flow, in cells of this octave
    Noise noise;
};

Noise weatherAt(vec2 position) {
    Noise weather = gradientNoise(eighthTurn * position * weatherCellsPerCell + weatherOrigin);
    weather.slope = weather.slope * eighthTurn;  // turned back
    return weather;
}

// Samples are carried along the weather's contours and up its slopes.
vec2 flowOf(Noise weather) {
    vec2 along = vec2(-weather.slope.y, weather.slope.x);
    return 0.2 * (along + weather.slope);
}

Octave firstOctave(vec2 position, vec2 displacement) {
    return Octave(position, displacement, gradientNoise(position + displacement));
}

// The displacement goes with the position into the finer octave, a little weaker each time and swollen by the coarser
// octave's slope: so fine detail flows with the large forms and does not turn into fur.
Octave nextOctave(Octave coarser, mat2 transform) {
    vec2 position = transform * coarser.position;
    vec2 displacement = transform * (0.8 * coarser.displacement + 0.03 * coarser.noise.slope);
    return Octave(position, displacement, gradientNoise(position + displacement));
}

// How much of an octave to show where one pixel spans so many of its cells: all of it at 8.4 pixels to the cell, none at
// 2.8, so that nothing shimmers.
float visibleShare(float cellsPerPixel) {
    return clamp(1.5 - 4.2 * cellsPerPixel, 0.0, 1.0);
}

// 1 when the style asks for that octave, counted from 1.
float isWanted(float octave) {
    return clamp(style.octaves - octave + 1.0, 0.0, 1.0);
}

struct Billow {
    float value;  // sqrt(x^2 + softness) - 1/4: a crease where the noise passes through zero, rounded between
    float rise;   // its derivative by x
};

// The noise leans on the coarser octave's, so that creases follow its forms.
const float lean = 0.3;

Billow billow(Octave octave, Octave coarser, float softness) {
    float x = octave.noise.value + lean * coarser.noise.value;
    float squared = x * x + softness;
    float inverseRoot = inversesqrt(squared);
    return Billow(squared * inverseRoot - 0.25, x * inverseRoot);
}

void main() {
    mat2 transform = mat2(style.octaveTransform.xy, style.octaveTransform.zw);
    vec2 position = texturePosition * cellsPerTextureWidth;
    float cellsInHeight = cellsPerTextureWidth * regionHeight;
    float thirdCellsPerPixel = abs(dFdy(texturePosition.y)) * cellsPerTextureWidth * octaveRatio * octaveRatio;
    float fourthCellsPerPixel = thirdCellsPerPixel * octaveRatio;

    Noise weather = weatherAt(position);
    Octave first = firstOctave(position, flowOf(weather));
    Octave second = nextOctave(first, transform);
    Octave third = nextOctave(second, transform);
    Octave fourth = nextOctave(third, transform);

    // The signed weight of detail, from the broad mass.
    float weight = clamp(0.27 + 1.75 * (first.noise.value + 0.6 * weather.value), -1.0, 1.3);
    Billow large = billow(second, first, 0.015);
    Billow middle = billow(third, second, 0.035);
    Billow fine = billow(fourth, third, 0.045);

    // Finer detail gathers on the large billows and leaves their creases clear.
    float fineWeight = weight * fineness * clamp(0.5 + 1.2 * (large.value + 0.15), 0.3, 1.4);
    float largeShare = 0.29 * (0.5 + 0.5 * fineness) * weight;
    float middleShare = 0.15 * isWanted(3.0) * visibleShare(thirdCellsPerPixel) * fineWeight;
    float fineShare = 0.08 * isWanted(4.0) * visibleShare(fourthCellsPerPixel) * fineWeight;

    float mass = 0.35 * first.noise.value + 0.25 * weather.value;
    mass += largeShare * large.value + middleShare * middle.value + fineShare * fine.value;

    // What the mass gains where each octave rises, by the chain rule: from the finest to the broadest, each brought into
    // the plane of the one before it by the transform. The weights' own slopes count little, but for the first.
    float byLarge = largeShare * large.rise;
    float byMiddle = middleShare * middle.rise;
    float byFine = fineShare * fine.rise;
    float byWeight = 0.5 * large.value;
    vec2 massSlope = byFine * fourth.noise.slope;
    massSlope = massSlope * transform + (byMiddle + lean * byFine) * third.noise.slope;
    massSlope = massSlope * transform + (byLarge + lean * byMiddle) * second.noise.slope;
    massSlope = massSlope * transform + (0.35 + lean * byLarge + byWeight) * first.noise.slope;
    massSlope += weatherCellsPerCell * (0.25 + 0.6 * byWeight) * weather.slope;

    float limited = 2.07 * mass - 0.09;
    float height = 0.5 + 0.5 * softLimit(limited);

    float limitedSlope = inversesqrt(1.0 + limited * limited);
    vec2 heightSlope = 0.5 * 2.07 * limitedSlope * limitedSlope * limitedSlope * massSlope;

    // The glow is the light on the broad forms alone.
    vec2 broadSlope = first.noise.slope + 0.35 * weight * large.rise * (second.noise.slope * transform);
    float glow = softLimit(0.4 * dot(broadSlope, lightFallsUp));
    float fan = weather.value + 0.22 * weather.slope.x;

    vec3 color = cloudColor(CloudPoint(height, glow, weather.value, fan), style.hueOffset, style.saturation);
    float lit = rise(height + 0.10 * glow, 0.05, 1.43);
    color *= style.fullColor + style.darkening * lit;

    float slope = dot(heightSlope, lightFallsUp) * cellsInHeight / unitRise;
    color = litColor(color, lightInColorPass * reliefLight(slope, height));

    outColor = vec4(color, 1.0);
    outHeight = height;
}
