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

// The product and the quotient of two complex numbers.
vec2 complexProduct(vec2 a, vec2 b) {
    return vec2(a.x * b.x - a.y * b.y, a.x * b.y + a.y * b.x);
}

vec2 complexQuotient(vec2 a, vec2 b) {
    return vec2(dot(a, b), a.y * b.x - a.x * b.y) / dot(b, b);
}

// Turns a direction away from moss, the more the greater `pull` is, from 0 to less than 1. On the circle of hues this is
// a Moebius map: where the hue drifts past moss it goes (1 + pull) / (1 - pull) times as fast, opposite as much slower.
vec2 awayFromMoss(vec2 hue, float pull) {
    vec2 fromMoss = complexQuotient(hue, moss);
    vec2 turned = complexQuotient(fromMoss - vec2(pull, 0.0), vec2(1.0, 0.0) - pull * fromMoss);
    return complexProduct(turned, moss);
}

// How near a hue is to moss, from 0 to 1.
float mossiness(vec2 hue) {
    float along = max(dot(hue, moss), 0.0);
    return along * along;
}

// `baseHue` in turns, `saturation` a factor.
vec3 cloudColor(CloudPoint point, float baseHue, float saturation) {
    float angle = turn * baseHue;
    vec2 hue = awayFromMoss(vec2(cos(angle), sin(angle)), 0.5);
    vec2 besideHue = vec2(-hue.y, hue.x);

    float outOfShadow = smoothstep(0.0, 0.55, point.height);
    float intoLight = smoothstep(0.40, 0.95, point.height + 0.16 * point.glow);

    // Near moss the hues fan less, and lie the further from it the deeper a place is: what stands between violet shadow
    // and pale gold is rose then, or teal, and not the grey that is a mix of the two.
    float fan = fanChroma * point.fan * (1.0 - 0.45 * mossiness(hue));
    vec2 leaning = bodyChroma * hue + fan * besideHue;
    float chroma = length(leaning);
    vec2 bodyHue = awayFromMoss(leaning / chroma, mossiness(hue) * (0.60 - 0.45 * point.height));

    // What is still near moss is pale and light.
    float mossy = mossiness(bodyHue);
    float warm = dot(bodyHue, warmth);
    vec2 body = chroma * (1.0 + 0.40 * max(warm, 0.0)) * (1.0 - 0.45 * mossy) * bodyHue;

    // Shadows keep a fixed violet-blue depth under any hue; lights lean to the opposite hue and a little to gold.
    vec2 shadow = 0.022 * bodyHue + shadowChroma * violetBlue;
    vec2 light = -0.018 * bodyHue - 0.40 * fan * besideHue + 0.012 * gold;
    vec2 ab = mix(mix(shadow, body, outOfShadow), light, intoLight);

    float lightness = 0.34;
    lightness += (0.28 + 0.05 * warm + 0.05 * mossy) * outOfShadow;
    lightness += (0.265 - 0.04 * warm - 0.04 * mossy) * intoLight;
    lightness += 0.045 * point.weather + 0.07 * point.glow;

    return displayColor(lightness, ab * softSaturation(saturation));
}
