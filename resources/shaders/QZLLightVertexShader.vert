#version 450
#extension GL_GOOGLE_include_directive : require

// Places the light pass's quad. Its texture positions are normalised coordinates of the intermediate images, v down.

layout(set = 0, binding = 0) uniform LightStyle {
    vec2 texel;    // size of one texel of the intermediate images, in texture coordinates
    float relief;  // 0.04 texel heights
    float fade;    // 0 to 1
} style;

#define VARYING out
#include "LightFrame.glsl"
#include "Quad.glsl"
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
    texturePosition = insideBorder(placedCorner());
    texelPosition = texturePosition / style.texel;
    texel = style.texel;
    slopeGain = reliefPerTexel / (style.relief * unitRise);
    fade = style.fade;
}
