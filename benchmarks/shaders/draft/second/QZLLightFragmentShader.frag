#version 450
#extension GL_GOOGLE_include_directive : require

// The second draft's light pass: the slope towards the light from two samples of the height, blended softly; dithered.

#include "../LightPass.glsl"

void main() {
    vec2 position = texturePosition + (0.5 - texturePosition) * 3.0 * style.texel;  // inside the border
    vec2 awayFromLight = vec2(0.6 * style.texel.x, 0.8 * style.texel.y);
    vec3 color = colorAt(position);
    float far = heightAt(position + awayFromLight);
    float near = heightAt(position - awayFromLight);
    float slope = (far - near) / (style.relief * 360.0);
    float light = 0.75 * slope * inversesqrt(0.5 + abs(slope) + 0.3 * slope * slope) * (0.3 + 0.6 * (far + near));
    float dither = fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715))));
    outColor = vec4((color + light * (color - 0.9 * color * color)) * style.fade + (dither - 0.5) * (1.0 / 255.0), 1.0);
}
