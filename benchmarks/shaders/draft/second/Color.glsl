// Colours mixed in OKLab: shadow, body, light.

// Linear light to display coding by three square roots.
vec3 displayCoded(vec3 linearColor) {
    vec3 color = max(linearColor, 0.0);
    vec3 a = sqrt(color);
    vec3 b = sqrt(a);
    vec3 c = sqrt(b);
    return 0.585122381 * a + 0.783140355 * b - 0.368262736 * c;
}

vec3 displayColor(float lightness, vec2 ab) {
    vec3 q = vec3(lightness + 0.3963377774 * ab.x + 0.2158037573 * ab.y,
                  lightness - 0.1055613458 * ab.x - 0.0638541728 * ab.y,
                  lightness - 0.0894841775 * ab.x - 1.2914855480 * ab.y);
    q = q * q * q;
    return displayCoded(vec3(4.0767416621 * q.x - 3.3077115913 * q.y + 0.2309699292 * q.z,
                             -1.2684380046 * q.x + 2.6097574011 * q.y - 0.3413193965 * q.z,
                             -0.0041960863 * q.x - 0.7034186147 * q.y + 1.7076147010 * q.z));
}

vec3 cloudColor(float height, vec3 weather, float glow) {
    float angle = 6.2831853 * style.hueOffset;
    vec2 hue = vec2(cos(angle), sin(angle));
    vec2 besideHue = vec2(-hue.y, hue.x);
    float saturation = style.saturation / (1.0 + 0.13 * style.saturation);
    float fan = weather.x + 0.22 * weather.y;
    float outOfShadow = smoothstep(0.0, 0.55, height);
    float intoLight = smoothstep(0.40, 0.95, height + 0.16 * glow);
    float warm = dot(hue, vec2(0.35, 0.94));
    float lightness = 0.34 + (0.28 + 0.05 * warm) * outOfShadow + (0.265 - 0.04 * warm) * intoLight +
                      0.045 * weather.x + 0.07 * glow;
    vec2 shadow = 0.022 * hue + 0.062 * vec2(0.20, -0.98);
    vec2 body = (0.062 * (1.0 + 0.40 * max(warm, 0.0))) * hue + 0.085 * fan * besideHue;
    vec2 light = -0.018 * hue - (0.40 * 0.085 * fan) * besideHue + 0.012 * vec2(0.40, 0.92);
    return displayColor(lightness, mix(mix(shadow, body, outOfShadow), light, intoLight) * saturation);
}
