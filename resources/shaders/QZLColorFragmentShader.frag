#version 450
#extension GL_GOOGLE_include_directive : require

// The colour pass: clouds from noise, as a colour and as a height for the light pass.
//
// A slow, coarse "weather" shapes the large masses, fans the hues and makes everything flow. Four octaves of noise lie
// over it. What the three finer ones add carries a signed weight that follows the mass: on the heights they are rounded
// billows with dark creases, in the valleys (weight negative) bright threads, and in between, where the weight passes
// through zero, there is haze. Large screens have wisps besides, which are finer still.

#include "Palette.glsl"
#define VARYING in
#include "ColorFrame.glsl"

layout(location = 0) out vec4 outColor;    // display-coded
layout(location = 1) out float outHeight;  // 0 to 1

layout(set = 1, binding = 0) uniform texture2D noiseTexture;
layout(set = 2, binding = 0) uniform sampler repeatingSampler;

#include "OkLab.glsl"
#include "CloudColor.glsl"
#include "Detail.glsl"
#include "GradientNoise.glsl"
#include "Relief.glsl"

// Every other lattice of noise lies turned by an eighth: so their directions do not add up to a grid.

const float weatherCellsPerCell = 0.31;
const vec2 weatherOrigin = vec2(10.5, 5.3);  // any place where it does not start on a corner of the lattice

Noise weatherAt(vec2 position) {
    return turnedBack(noiseOfHash(turned(weatherCellsPerCell * position + weatherOrigin), salt));
}

// Where an octave is sampled, in its own cells.
struct Place {
    vec2 position;
    vec2 displacement;  // by the flow
};

struct Octave {
    Place place;
    Noise noise;
};

// Samples are carried along the weather's contours and up its slopes.
Place placeInFlow(vec2 position, Noise weather) {
    vec2 along = vec2(-weather.slope.y, weather.slope.x);
    return Place(position, 0.2 * (along + weather.slope));
}

// The displacement goes with the position into the finer octave, a little weaker each time and swollen by the coarser
// octave's slope: so fine detail flows with the large forms and does not turn into fur.
Place finerPlace(Octave coarser) {
    vec2 displacement = 0.8 * coarser.place.displacement + 0.03 * coarser.noise.slope;
    return Place(octaveTransform * coarser.place.position, octaveTransform * displacement);
}

vec2 sampled(Place place) {
    return place.position + place.displacement;
}

Octave octaveAt(Place place) {
    return Octave(place, noiseOfTexture(sampled(place)));
}

Octave turnedOctaveAt(Place place) {
    return Octave(place, turnedBack(noiseOfTexture(turned(sampled(place)))));
}

Octave wispsAt(Place place) {
    return Octave(place, noiseOfHash(sampled(place), salt));
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
    Noise weather = weatherAt(cellPosition);
    Octave first = octaveAt(placeInFlow(cellPosition, weather));
    Octave second = turnedOctaveAt(finerPlace(first));
    Octave third = octaveAt(finerPlace(second));
    Octave fourth = turnedOctaveAt(finerPlace(third));
    Octave wisps = fourth;
    if (hasWisps) {
        wisps = wispsAt(finerPlace(fourth));
    }

    // The signed weight of detail, from the broad mass.
    float weight = clamp(0.27 + 1.75 * (first.noise.value + 0.6 * weather.value), -1.0, 1.3);
    Billow large = billow(second, first, 0.015);
    Billow middle = billow(third, second, 0.035);
    Billow fine = billow(fourth, third, 0.045);
    Billow wispy = billow(wisps, fourth, 0.10);

    // Finer detail gathers on the large billows and leaves their creases clear.
    float fineWeight = weight * clamp(0.5 + 1.2 * (large.value + 0.15), 0.3, 1.4);
    float largeShare = octaveShares[0] * weight;
    float middleShare = octaveShares[1] * fineWeight;
    float fineShare = octaveShares[2] * fineWeight;
    float wispShare = hasWisps ? octaveShares[3] * fineWeight : 0.0;

    float mass = 0.35 * first.noise.value + 0.25 * weather.value;
    mass += largeShare * large.value + middleShare * middle.value + fineShare * fine.value + wispShare * wispy.value;

    // What the mass gains where each octave rises, by the chain rule: from the finest to the broadest, each brought into
    // the plane of the one before it by the transform. The weights' own slopes count little, but for the first.
    float byLarge = largeShare * large.rise;
    float byMiddle = middleShare * middle.rise;
    float byFine = fineShare * fine.rise;
    float byWisps = wispShare * wispy.rise;
    float byWeight = 0.5 * large.value;
    vec2 massSlope = byWisps * wisps.noise.slope;
    massSlope = massSlope * octaveTransform + (byFine + lean * byWisps) * fourth.noise.slope;
    massSlope = massSlope * octaveTransform + (byMiddle + lean * byFine) * third.noise.slope;
    massSlope = massSlope * octaveTransform + (byLarge + lean * byMiddle) * second.noise.slope;
    massSlope = massSlope * octaveTransform + (0.35 + lean * byLarge + byWeight) * first.noise.slope;
    massSlope += weatherCellsPerCell * (0.25 + 0.6 * byWeight) * weather.slope;

    float limited = 2.07 * mass - 0.09;
    float height = 0.5 + 0.5 * softLimit(limited);

    float limitedSlope = inversesqrt(1.0 + limited * limited);
    vec2 heightSlope = 0.5 * 2.07 * limitedSlope * limitedSlope * limitedSlope * massSlope;

    // The glow is the light on the broad forms alone.
    vec2 broadSlope = first.noise.slope + 0.35 * weight * large.rise * (second.noise.slope * octaveTransform);
    float glow = softLimit(0.4 * dot(broadSlope, lightFallsUp));
    float fan = weather.value + 0.22 * weather.slope.x;

    vec3 color = cloudColor(CloudPoint(height, glow, weather.value, fan), palette);
    float lit = rise(height + 0.10 * glow, 0.05, 1.43);
    color *= fullColor + darkening * lit;

    float slope = slopeGain * dot(heightSlope, lightFallsUp);
    color = litColor(color, lightInColorPass * reliefLight(slope, height));

    outColor = vec4(color, 1.0);
    outHeight = height;
}
