// The colours of a moment: where shadow, body and light of the clouds lie on OKLab's plane of hues.

// Chroma is in OKLab units throughout: 0 is grey, about 0.1 a clear colour.
const float bodyChroma = 0.062;
const float fanChroma = 0.085;  // how far the weather fans the hue to either side
const float shadowChroma = 0.062;

// Directions on the plane of hues.
const vec2 violetBlue = vec2(0.20, -0.98);
const vec2 gold = vec2(0.40, 0.92);

// The hue of moss and mustard, the least lovely one for clouds: 113 degrees.
const vec2 moss = vec2(-0.3979, 0.9174);

struct Palette {
    vec2 body;
    vec2 fan;  // what a body that leans wholly to one side has besides
    vec2 shadow;
    vec2 light;
    float saturation;  // a factor for them all
};

// Takes a share of what a vector of hue has of moss out of it: what stays is further from moss, and paler.
vec2 withoutMoss(vec2 ab, float share) {
    return ab - share * max(dot(ab, moss), 0.0) * moss;
}

// Keeps the highest settings from becoming garish: at 0.5, 1.5 and 3 it gives 0.46, 1.21 and 2.03.
float softSaturation(float saturation) {
    return saturation / (1.0 + 0.16 * saturation);
}

// `baseHue` in turns, `saturation` a factor.
Palette paletteOf(float baseHue, float saturation) {
    // The hue drifts evenly; more than twice as fast past moss, and near it the hues fan less.
    float angle = radians(360.0 * baseHue);
    vec2 hue = normalize(withoutMoss(vec2(cos(angle), sin(angle)), 0.55));
    float width = 1.0 - 0.45 * max(dot(hue, moss), 0.0);

    // Shadows keep a fixed violet-blue depth under any hue; lights lean to the opposite hue and a little to gold.
    Palette palette;
    palette.body = bodyChroma * hue;
    palette.fan = fanChroma * width * vec2(-hue.y, hue.x);
    palette.shadow = 0.022 * hue + shadowChroma * violetBlue;
    palette.light = -0.018 * hue + 0.012 * gold;
    palette.saturation = softSaturation(saturation);
    return palette;
}
