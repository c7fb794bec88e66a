#version 450
#extension GL_GOOGLE_include_directive : require

// The second draft's colour pass: a coarse weather and four octaves of gradient noise, detail with a signed weight.

#include "../ColorPass.glsl"
#include "Noise.glsl"
#include "Color.glsl"

const float cellsPerTextureWidth = 256.0 * 0.088;
const mat2 eighthTurn = mat2(0.7071, 0.7071, -0.7071, 0.7071);

// sqrt(x^2 + softness) - 1/4 and its derivative.
vec2 billow(float x, float softness) {
    float inverseRoot = inversesqrt(x * x + softness);
    return vec2((x * x + softness) * inverseRoot - 0.25, x * inverseRoot);
}

void main() {
    mat2 transform = mat2(style.octaveTransform.xy, style.octaveTransform.zw);
    vec2 position = texturePosition * cellsPerTextureWidth;
    float finestCellsPerPixel = abs(dFdy(texturePosition.y)) * (cellsPerTextureWidth * 7.645);
    vec2 visible = clamp(vec2(1.5) - finestCellsPerPixel * vec2(2.13, 4.2), 0.0, 1.0) *
                   clamp(style.octaves - vec2(2.0, 3.0), 0.0, 1.0);

    vec3 weather = noiseAndSlopeAt(eighthTurn * position * 0.31 + vec2(3.7, 11.2));
    weather.yz = weather.yz * eighthTurn;
    vec2 flow = 0.2 * vec2(-weather.z, weather.y) + 0.2 * weather.yz;

    vec3 noise = noiseAndSlopeAt(position + flow);
    vec2 slope = noise.yz;
    float weight = clamp(0.27 + 1.75 * (noise.x + 0.6 * weather.x), -1.0, 1.3);
    float mass = 0.35 * noise.x + 0.25 * weather.x;
    float coarser = noise.x;

    position = transform * position;
    flow = transform * (0.8 * flow + 0.03 * noise.yz);
    noise = noiseAndSlopeAt(position + flow);
    vec2 detail = billow(noise.x + 0.3 * coarser, 0.015);
    mass += 0.29 * weight * detail.x;
    slope += 0.35 * weight * detail.y * (noise.yz * transform);
    weight *= clamp(0.5 + 1.2 * (detail.x + 0.15), 0.3, 1.4);
    coarser = noise.x;

    position = transform * position;
    flow = transform * (0.8 * flow + 0.03 * noise.yz);
    noise = noiseAndSlopeAt(position + flow);
    detail = billow(noise.x + 0.3 * coarser, 0.035);
    mass += 0.15 * visible.x * weight * detail.x;
    coarser = noise.x;

    position = transform * position;
    flow = transform * (0.8 * flow + 0.03 * noise.yz);
    detail = billow(noiseAt(position + flow) + 0.3 * coarser, 0.045);
    mass += 0.08 * visible.y * weight * detail.x;

    float lifted = 0.9 * (1.15 * mass - 0.05);
    float height = 0.5 + lifted * inversesqrt(1.0 + 4.0 * lifted * lifted);
    float glow = dot(slope, vec2(0.6, -0.8)) * 0.4;
    glow *= inversesqrt(1.0 + glow * glow);
    vec3 color = cloudColor(height, weather, glow);
    color *= style.fullColor + style.darkening * smoothstep(0.05, 0.75, height + 0.10 * glow);
    outColor = vec4(color, 1.0);
    outHeight = height;
}
