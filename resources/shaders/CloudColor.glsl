// The colour of a piece of cloud. Three anchors are mixed by height: shadow, body, light.

// Chroma is in OKLab units throughout: 0 is grey, about 0.1 a clear colour.
const float bodyChroma = 0.062;
const float fanChroma = 0.085;    // how far the weather fans the hue to either side
const float shadowChroma = 0.062;

// Directions in OKLab's plane of hues.
const vec2 violetBlue = vec2(0.20, -0.98);
const vec2 gold = vec2(0.40, 0.92);
const vec2 warmth = vec2(0.35, 0.94);  // orange to yellow, where a hue of the same lightness looks darker

// The hue of moss and mustard, the least lovely one for clouds: 113 degrees.
const vec2 moss = vec2(-0.3979, 0.9174);

struct CloudPoint {
    float height;   // 0 to 1
    float glow;     // -1 to 1: how much the broad slope faces the light
    float weather;  // about -1 to 1: the slow field that shapes the large masses
    float fan;      // about -1 to 1: to which side of the base hue this place leans
};

// Keeps the highest settings from becoming garish: at 0.5, 1.5 and 3 it gives 0.46, 1.21 and 2.03.
float softSaturation(float saturation) {
    return saturation / (1.0 + 0.16 * saturation);
}

// The direction of a hue in turns: cosine and sine as parabolas, brought to length 1; at most 2.6 degrees
// beside the hue.
vec2 hueDirection(float turns) {
    float v = 2.0 * fract(turns + 0.5) - 1.0;
    float x = 0.5 - abs(v);
    return normalize(vec2(x - x * abs(x), v - v * abs(v)));
}

// Takes a share of what a vector of hue has of moss out of it: what stays is further from moss, and paler.
vec2 withoutMoss(vec2 ab, float share) {
    return ab - share * max(dot(ab, moss), 0.0) * moss;
}

// The smooth step from 0 to 1 over `from` to `from + 1 / rate`, without a division.
float rise(float x, float from, float rate) {
    float t = clamp((x - from) * rate, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

// `baseHue` in turns, `saturation` a factor.
vec3 cloudColor(CloudPoint point, float baseHue, float saturation) {
    // The hue drifts evenly; more than twice as fast past moss.
    vec2 hue = normalize(withoutMoss(hueDirection(baseHue), 0.55));
    vec2 besideHue = vec2(-hue.y, hue.x);

    float outOfShadow = rise(point.height, 0.0, 1.82);
    float intoLight = rise(point.height + 0.16 * point.glow, 0.40, 1.82);

    // Near moss the hues fan less.
    float fan = fanChroma * point.fan * (1.0 - 0.45 * max(dot(hue, moss), 0.0));
    vec2 leaning = bodyChroma * hue + fan * besideHue;
    float warm = clamp(dot(leaning, warmth) / bodyChroma, -1.0, 1.0);
    float mossy = clamp(dot(leaning, moss) / bodyChroma, 0.0, 1.0);

    // The deeper a place, the less moss it has: what stands between violet shadow and pale gold is rose then, or teal, and
    // not the grey that is a mix of the two.
    vec2 body = (1.0 + 0.40 * max(warm, 0.0)) * withoutMoss(leaning, 0.80 - 0.40 * point.height);

    // Shadows keep a fixed violet-blue depth under any hue; lights lean to the opposite hue and a little to gold.
    vec2 shadow = 0.022 * hue + shadowChroma * violetBlue;
    vec2 light = -0.018 * hue - 0.40 * fan * besideHue + 0.012 * gold;
    vec2 ab = mix(mix(shadow, body, outOfShadow), light, intoLight);

    float lightness = 0.34;
    lightness += (0.28 + 0.05 * warm + 0.05 * mossy) * outOfShadow;
    lightness += (0.265 - 0.04 * warm - 0.04 * mossy) * intoLight;
    lightness += 0.045 * point.weather + 0.07 * point.glow;

    return displayColor(lightness, ab * softSaturation(saturation));
}
