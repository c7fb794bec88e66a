// What the colour passes of both drafts read and write.
layout(location = 0) in vec2 texturePosition;  // on the noise plane, in noise-texture widths
layout(location = 0) out vec4 outColor;
layout(location = 1) out float outHeight;

layout(set = 0, binding = 0) uniform ColorStyle {
    vec4 octaveTransform;
    float octaves;
    float hueOffset;   // turns
    float saturation;
    float fullColor;   // 1 - darkening
    float darkening;
} style;

layout(set = 1, binding = 0) uniform texture2D noiseTexture;
layout(set = 2, binding = 0) uniform sampler repeatingSampler;
