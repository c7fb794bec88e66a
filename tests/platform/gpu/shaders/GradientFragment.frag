#version 450

// The texture position as red and green.

layout(location = 0) in vec2 texturePosition;
layout(location = 0) out vec4 outColor;

void main() { outColor = vec4(texturePosition, 0.0, 1.0); }
