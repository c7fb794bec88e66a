#version 450

// The red of each of four textures.

layout(set = 1, binding = 0) uniform texture2D textures0;
layout(set = 1, binding = 1) uniform texture2D textures1;
layout(set = 1, binding = 2) uniform texture2D textures2;
layout(set = 1, binding = 3) uniform texture2D textures3;
layout(set = 2, binding = 1) uniform sampler clampingSampler;
layout(location = 0) in vec2 texturePosition;
layout(location = 0) out vec4 outColor;

float red(texture2D image) { return texture(sampler2D(image, clampingSampler), texturePosition).r; }

void main() { outColor = vec4(red(textures0), red(textures1), red(textures2), red(textures3)); }
