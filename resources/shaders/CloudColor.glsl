// The colour of a piece of cloud. Three anchors are mixed by height: shadow, body, light.

const vec2 warmth = vec2(0.35, 0.94);  // orange to yellow, where a hue of the same lightness looks darker

struct CloudPoint {
    float height;   // 0 to 1
    float glow;     // -1 to 1: how much the broad slope faces the light
    float weather;  // about -1 to 1: the slow field that shapes the large masses
    float fan;      // about -1 to 1: to which side of the base hue this place leans
};

// The smooth step from 0 to 1 over `from` to `from + 1 / rate`, without a division.
float rise(float x, float from, float rate) {
    float t = clamp((x - from) * rate, 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

vec3 cloudColor(CloudPoint point, Palette palette) {
    float outOfShadow = rise(point.height, 0.0, 1.82);
    float intoLight = rise(point.height + 0.16 * point.glow, 0.40, 1.82);

    vec2 leaning = palette.body + point.fan * palette.fan;
    float warm = clamp(dot(leaning, warmth) / bodyChroma, 0.0, 1.0);
    float cool = clamp(dot(leaning, -warmth) / bodyChroma, 0.0, 1.0);
    float mossy = clamp(dot(leaning, moss) / bodyChroma, 0.0, 1.0);

    // The deeper a place, the less moss it has: what stands between violet shadow and pale gold is rose then, or teal,
    // and not the grey that is a mix of the two. Lights lean to the other side.
    vec2 body = (1.0 + 0.40 * warm) * withoutMoss(leaning, 0.80 - 0.40 * point.height);
    vec2 light = palette.light - 0.40 * point.fan * palette.fan;
    vec2 ab = mix(mix(palette.shadow, body, outOfShadow), light, intoLight);

    // Cool bodies are deep below their lights; warm ones would turn to brown there, but may not glare either.
    float lightness = 0.34;
    lightness += (0.28 - 0.05 * cool - 0.01 * warm + 0.02 * mossy) * outOfShadow;
    lightness += (0.265 + 0.04 * cool - 0.02 * mossy) * intoLight;
    lightness += 0.045 * point.weather + 0.07 * point.glow;

    return displayColor(lightness, ab * palette.saturation);
}
