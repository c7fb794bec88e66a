#version 450
#extension GL_GOOGLE_include_directive : require

// The light pass: the colour image, brought to the screen's size and lit from the upper left as a relief of the height
// image, as far as that was not done before.

layout(location = 0) in vec2 texturePosition;  // in the intermediate images, v down
layout(location = 0) out vec4 outColor;

layout(set = 0, binding = 0) uniform LightStyle {
    vec2 texel;    // size of one texel of the intermediate images, in texture coordinates
    float relief;  // 0.04 texel heights
    float fade;    // 0 to 1
} style;

layout(set = 1, binding = 0) uniform texture2D colorTexture;
layout(set = 1, binding = 1) uniform texture2D heightTexture;
layout(set = 2, binding = 1) uniform sampler clampingSampler;

#include "Dither.glsl"
#include "HeightSlope.glsl"
#include "Relief.glsl"

// The texel's height is a known part of the picture's, and the relief a known part of that: so a slope per relief has
// the same measure at any size of the images.
const float reliefPerTexel = 0.04;

// The picture's edge lies so many texels inside the images, so that no slope is taken over their rim.
const float border = 1.5;

vec2 insideBorder(vec2 position) {
    return position + 2.0 * border * style.texel * (0.5 - position);
}

void main() {
    vec2 position = insideBorder(texturePosition);
    vec3 color = texture(sampler2D(colorTexture, clampingSampler), position).rgb;
    HeightSlope surface = heightSlopeAt(position);
    float slope = dot(surface.slope, lightFallsDown) / style.relief * (reliefPerTexel / unitRise);
    float light = lightInLightPass * reliefLight(slope, surface.height);
    outColor = vec4(litColor(color, light) * style.fade + ditherOf8Bits(gl_FragCoord.xy), 1.0);
}
