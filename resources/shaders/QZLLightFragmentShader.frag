#version 450
#extension GL_GOOGLE_include_directive : require

// The light pass: the colour image, brought to the screen's size and lit from the upper left as a relief of the height
// image, as far as that was not done before.

#define VARYING in
#include "LightFrame.glsl"

layout(location = 0) out vec4 outColor;

layout(set = 1, binding = 0) uniform texture2D colorTexture;
layout(set = 1, binding = 1) uniform texture2D heightTexture;
layout(set = 2, binding = 1) uniform sampler clampingSampler;
layout(set = 2, binding = 2) uniform sampler nearestSampler;

#include "Dither.glsl"
#include "HeightSlope.glsl"
#include "Relief.glsl"

void main() {
    vec3 color = texture(sampler2D(colorTexture, clampingSampler), texturePosition).rgb;
    HeightSlope surface = heightSlopeAt(texelPosition, texel);
    float slope = slopeGain * dot(surface.slope, lightFallsDown);
    float light = lightInLightPass * reliefLight(slope, surface.height);
    outColor = vec4(litColor(color, light) * fade + ditherOf8Bits(gl_FragCoord.xy), 1.0);
}
