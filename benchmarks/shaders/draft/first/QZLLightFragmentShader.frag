#version 450
#extension GL_GOOGLE_include_directive : require

// The first draft's light pass: the colour times the light on a normal from four samples of the height.

#include "../LightPass.glsl"

void main() {
    vec3 color = colorAt(texturePosition);
    float left = heightAt(texturePosition - vec2(style.texel.x, 0.0));
    float right = heightAt(texturePosition + vec2(style.texel.x, 0.0));
    float above = heightAt(texturePosition - vec2(0.0, style.texel.y));
    float below = heightAt(texturePosition + vec2(0.0, style.texel.y));
    vec3 normal = normalize(vec3(left - right, above - below, style.relief * 150.0));
    float lit = clamp(dot(normal, normalize(vec3(-0.5, -0.6, 0.7))), 0.0, 1.0);
    outColor = vec4(color * (0.35 + 0.9 * lit) * style.fade, 1.0);
}
