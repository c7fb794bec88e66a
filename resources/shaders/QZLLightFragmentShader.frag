#version 450
#extension GL_GOOGLE_include_directive : require

// The light pass: the colour image, brought to the screen's size and lit from the upper left as a relief of the height
// image.

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

// The slope per texel that counts as 1, in reliefs. With the relief of 0.04 texel heights that is a rise by 7.2 over the
// picture's height, whatever the size of the images.
const float reliefsPerUnitSlope = 180.0;

// The picture's edge lies so many texels inside the images, so that no slope is taken over their rim.
const float border = 1.5;

vec2 insideBorder(vec2 position) {
    return position + 2.0 * border * style.texel * (0.5 - position);
}

// Gentle slopes are lifted, steep ones held; heights catch more light than depths.
float reliefLight(HeightSlope surface) {
    float slope = dot(surface.slope, lightFallsDown) / (style.relief * reliefsPerUnitSlope);
    float companded = slope * inversesqrt(0.5 + abs(slope) + 0.3 * slope * slope);
    return 0.75 * companded * (0.3 + 1.2 * surface.height);
}

// Blends softly: what is nearly black or white already changes least, so that hardly anything clips.
vec3 litColor(vec3 color, float light) {
    return color + light * (color - 0.9 * color * color);
}

void main() {
    vec2 position = insideBorder(texturePosition);
    vec3 color = texture(sampler2D(colorTexture, clampingSampler), position).rgb;
    float light = reliefLight(heightSlopeAt(position, style.texel));
    outColor = vec4(litColor(color, light) * style.fade + ditherOf8Bits(gl_FragCoord.xy), 1.0);
}
