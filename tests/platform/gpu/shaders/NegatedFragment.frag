#version 450

// What is below zero in the texture, made positive; zero for all else.

layout(set = 1, binding = 0) uniform texture2D image;
layout(set = 2, binding = 1) uniform sampler clampingSampler;
layout(location = 0) in vec2 texturePosition;
layout(location = 0) out vec4 outColor;

void main() { outColor = max(-texture(sampler2D(image, clampingSampler), texturePosition), 0.0); }
