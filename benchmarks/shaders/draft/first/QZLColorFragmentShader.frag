#version 450
#extension GL_GOOGLE_include_directive : require

// The first draft's colour pass: four octaves of value noise, each displaced by the sum so far, as a hue and a height.

#include "../ColorPass.glsl"

float valueNoise(vec2 position) {
    vec2 texel = position * 256.0 - 0.5;
    vec2 inCell = fract(texel);
    vec2 meetingPoint = (floor(texel) + 1.0) / 256.0;
    vec4 corners = textureGather(sampler2D(noiseTexture, repeatingSampler), meetingPoint, 0);
    vec2 weight = inCell * inCell * inCell * (inCell * (inCell * 6.0 - 15.0) + 10.0);
    return mix(mix(corners.w, corners.z, weight.x), mix(corners.x, corners.y, weight.x), weight.y);
}

vec3 fromHueSaturationValue(float hue, float saturation, float value) {
    vec3 pure = clamp(abs(fract(hue + vec3(0.0, 2.0 / 3.0, 1.0 / 3.0)) * 6.0 - 3.0) - 1.0, 0.0, 1.0);
    return value * mix(vec3(1.0), pure, saturation);
}

void main() {
    mat2 transform = mat2(style.octaveTransform.xy, style.octaveTransform.zw);
    vec2 position = texturePosition;
    float amplitude = 0.5;
    float sum = 0.0;
    float amplitudes = 0.0;
    int octaves = int(style.octaves);
    for (int octave = 0; octave < octaves; octave++) {
        sum += amplitude * valueNoise(position);
        amplitudes += amplitude;
        amplitude *= 0.5;
        position = transform * position + vec2(0.017 * sum);
    }
    float height = clamp(sum / amplitudes * 0.9 + 0.5, 0.0, 1.0);
    float broad = valueNoise(texturePosition * 0.37 + 0.31);
    vec3 color = fromHueSaturationValue(style.hueOffset + height * 0.35 + broad * 0.25,
                                        clamp(style.saturation * 0.5, 0.0, 1.0), 1.0);
    float shade = style.fullColor + style.darkening * (height * 2.0 - 1.0);
    outColor = vec4(color * shade, 1.0);
    outHeight = height;
}
