// What the light passes of both drafts read and write.
layout(location = 0) in vec2 texturePosition;  // in the intermediate images
layout(location = 0) out vec4 outColor;

layout(set = 0, binding = 0) uniform LightStyle {
    vec2 texel;
    float relief;
    float fade;
} style;

layout(set = 1, binding = 0) uniform texture2D colorTexture;
layout(set = 1, binding = 1) uniform texture2D heightTexture;
layout(set = 2, binding = 1) uniform sampler clampingSampler;

vec3 colorAt(vec2 position) {
    return texture(sampler2D(colorTexture, clampingSampler), position).rgb;
}

float heightAt(vec2 position) {
    return texture(sampler2D(heightTexture, clampingSampler), position).r;
}
