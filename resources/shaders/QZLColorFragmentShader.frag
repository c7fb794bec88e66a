#version 450
#extension GL_GOOGLE_include_directive : require

// The colour pass: clouds from noise, as a colour and as a height for the light pass.
//
// A slow, coarse "weather" shapes the large masses, fans the hues and makes everything flow. Four octaves of noise lie
// over it. What the three finer ones add carries a signed weight that follows the mass: on the heights they are rounded
// billows with dark creases, in the valleys (weight negative) bright threads, and in between, where the weight passes
// through zero, there is haze. Wisps are finer still; they are not counted among the octaves, and not drawn everywhere.

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

// Samples are carried along the weather's contours and up its slopes, by so much of the slope.
const float flow = 0.2;

Place placeInFlow(vec2 position, Noise weather) {
    vec2 along = vec2(-weather.slope.y, weather.slope.x);
    return Place(position, flow * (along + weather.slope));
}

// The displacement goes with the position into the finer octave, a little weaker each time and swollen by the coarser
// octave's slope: so fine detail flows with the large forms and does not turn into fur.
const float flowKept = 0.8;
const float swelling = 0.03;

Place finerPlace(Octave coarser) {
    vec2 displacement = flowKept * coarser.place.displacement + swelling * coarser.noise.slope;
    return Place(octaveTransform * coarser.place.position, octaveTransform * displacement);
}

vec2 sampled(Place place) {
    return place.position + place.displacement;
}

Octave octaveAt(Place place) {
    return Octave(place, noiseOfTexture(sampled(place)));
}

// Every other lattice lies turned by an eighth: so their directions do not add up to a grid.
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

// Softness of the creases, in squared values of noise: wider the finer they are, or they would be lines.
const float softOfLarge = 0.015;
const float softOfMiddle = 0.035;
const float softOfFine = 0.045;
const float softOfWisps = 0.10;

// What the broad forms make of the mass, where all of them are about -1 to 1.
const float massOfFirst = 0.35;
const float massOfWeather = 0.25;

// The signed weight of detail, from the broad forms: above zero where they are at rest, so that there is more cloud than
// haze, and held where they are extreme.
const float weightAtRest = 0.27;
const float weightGain = 1.75;
const float weatherInWeight = 0.6;

float weightOfDetail(float first, float weather) {
    return clamp(weightAtRest + weightGain * (first + weatherInWeight * weather), -1.0, 1.3);
}

// Finer detail gathers on the large billows and leaves their creases clear: from 0.3 in a crease to 1.4 on a crown.
float gathering(Billow large) {
    return clamp(0.68 + 1.2 * large.value, 0.3, 1.4);
}

// From mass to what is held between -1 and 1 as the height: steeply, and a little lower, for deeper valleys.
const float heightGain = 2.07;
const float heightLoss = 0.09;

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

    Billow large = billow(second, first, softOfLarge);
    Billow middle = billow(third, second, softOfMiddle);
    Billow fine = billow(fourth, third, softOfFine);
    Billow wispy = billow(wisps, fourth, softOfWisps);

    float weight = weightOfDetail(first.noise.value, weather.value);
    float fineWeight = weight * gathering(large);
    float largeShare = octaveShares[0] * weight;
    float middleShare = octaveShares[1] * fineWeight;
    float fineShare = octaveShares[2] * fineWeight;
    float wispShare = hasWisps ? octaveShares[3] * fineWeight : 0.0;

    float mass = massOfFirst * first.noise.value + massOfWeather * weather.value;
    mass += largeShare * large.value + middleShare * middle.value + fineShare * fine.value + wispShare * wispy.value;

    // What the mass gains where each octave rises, by the chain rule: from the finest to the broadest, each brought into
    // the plane of the one before it by the transform. Left out are the displacement's own slope and those of the finer
    // shares: light that is a third off by them still models the same forms.
    float byLarge = largeShare * large.rise;
    float byMiddle = middleShare * middle.rise;
    float byFine = fineShare * fine.rise;
    float byWisps = wispShare * wispy.rise;
    float byWeight = weightGain * octaveShares[0] * large.value;
    vec2 massSlope = byWisps * wisps.noise.slope;
    massSlope = massSlope * octaveTransform + (byFine + lean * byWisps) * fourth.noise.slope;
    massSlope = massSlope * octaveTransform + (byMiddle + lean * byFine) * third.noise.slope;
    massSlope = massSlope * octaveTransform + (byLarge + lean * byMiddle) * second.noise.slope;
    massSlope = massSlope * octaveTransform + (massOfFirst + lean * byLarge + byWeight) * first.noise.slope;
    massSlope += weatherCellsPerCell * (massOfWeather + weatherInWeight * byWeight) * weather.slope;

    float unlimited = heightGain * mass - heightLoss;
    float height = 0.5 + 0.5 * softLimit(unlimited);

    // The slope of the soft limit is the third power of this.
    float inverseRoot = inversesqrt(1.0 + unlimited * unlimited);
    vec2 heightSlope = 0.5 * heightGain * inverseRoot * inverseRoot * inverseRoot * massSlope;

    // The glow is the light on the broad forms alone; the fan of hues follows the weather and a little its slope, so that
    // it does not end where the weather does.
    vec2 broadSlope = first.noise.slope + 0.35 * weight * large.rise * (second.noise.slope * octaveTransform);
    float glow = softLimit(0.4 * dot(broadSlope, lightFallsUp));
    float fan = weather.value + 0.22 * weather.slope.x;

    // Depths lose their light with the setting's darkness; from three quarters of the height on nothing does.
    vec3 color = cloudColor(CloudPoint(height, glow, weather.value, fan), palette);
    float lit = rise(height + 0.10 * glow, 0.05, 1.43);
    color *= fullColor + darkening * lit;

    float slope = slopeGain * dot(heightSlope, lightFallsUp);
    color = litColor(color, lightInColorPass * reliefLight(slope, height));

    outColor = vec4(color, 1.0);
    outHeight = height;
}
