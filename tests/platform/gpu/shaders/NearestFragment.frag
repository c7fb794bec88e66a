#version 450

layout(set = 1, binding = 0) uniform texture2D image;
layout(set = 2, binding = 2) uniform sampler nearestSampler;
layout(location = 0) in vec2 texturePosition;
layout(location = 0) out vec4 outColor;

void main() { outColor = texture(sampler2D(image, nearestSampler), texturePosition); }
