// The colour of a piece of cloud. Three anchors are mixed by height: shadow, body, light.

// Chroma is in OKLab units throughout: 0 is grey, about 0.1 a clear colour.
const float bodyChroma = 0.062;
const float fanChroma = 0.085;    // how far the weather fans the hue to either side
const float shadowChroma = 0.062;

// Directions in OKLab's plane of hues.
const vec2 violetBlue = vec2(0.20, -0.98);
const vec2 gold = vec2(0.40, 0.92);
const vec2 warmth = vec2(0.35, 0.94);  // orange to yellow, where a hue of the same lightness looks darker

const float turn = 6.2831853;  // radians

// The hue of moss and mustard, in radians: the least lovely one for clouds.
const float mossHue = 1.92;

struct CloudPoint {
    float height;   // 0 to 1
    float glow;     // -1 to 1: how much the broad slope faces the light
    float weather;  // about -1 to 1: the slow field that shapes the large masses
    float fan;      // about -1 to 1: to which side of the base hue this place leans
};

// Keeps the highest settings from becoming garish: at 0.5, 1.5 and 3 it gives 0.47, 1.26 and 2.16.
float softSaturation(float saturation) {
    return saturation / (1.0 + 0.13 * saturation);
}

// The hue that drifts evenly, in turns, made to hurry past moss (3.4 times as fast as past the violets opposite).
float unevenHue(float baseHue) {
    float angle = turn * baseHue;
    return angle + 0.55 * sin(angle - mossHue);
}

// `baseHue` in turns, `saturation` a factor.
vec3 cloudColor(CloudPoint point, float baseHue, float saturation) {
    float angle = unevenHue(baseHue);
    vec2 hue = vec2(cos(angle), sin(angle));
    float moss = max(cos(angle - mossHue), 0.0);
    vec2 besideHue = vec2(-hue.y, hue.x);
    float warm = dot(hue, warmth);

    float outOfShadow = smoothstep(0.0, 0.55, point.height);
    float intoLight = smoothstep(0.40, 0.95, point.height + 0.16 * point.glow);

    // Shadows keep a fixed violet-blue depth under any hue; lights lean to the opposite hue and a little to gold.
    vec2 shadow = 0.022 * hue + shadowChroma * violetBlue;
    vec2 body = bodyChroma * (1.0 + 0.40 * max(warm, 0.0) - 0.45 * moss * moss) * hue + fanChroma * point.fan * besideHue;
    vec2 light = -0.018 * hue - 0.40 * fanChroma * point.fan * besideHue + 0.012 * gold;
    vec2 ab = mix(mix(shadow, body, outOfShadow), light, intoLight);

    float lightness = 0.34;
    lightness += (0.28 + 0.05 * warm) * outOfShadow;
    lightness += (0.265 - 0.04 * warm) * intoLight;
    lightness += 0.045 * point.weather + 0.07 * point.glow;

    return displayColor(lightness, ab * softSaturation(saturation));
}
