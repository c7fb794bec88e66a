#version 450

// A part of each of four buffers.

layout(set = 0, binding = 0) uniform First { vec4 value; } first;
layout(set = 0, binding = 1) uniform Second { vec4 value; } second;
layout(set = 0, binding = 2) uniform Third { vec4 value; } third;
layout(set = 0, binding = 3) uniform Fourth { vec4 value; } fourth;
layout(location = 0) out vec4 outColor;

void main() { outColor = vec4(first.value.r, second.value.g, third.value.b, fourth.value.a); }
