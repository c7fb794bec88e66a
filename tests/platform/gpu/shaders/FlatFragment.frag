#version 450

// What the vertex function hands over.

layout(location = 0) flat in vec4 color;
layout(location = 0) out vec4 outColor;

void main() { outColor = color; }
