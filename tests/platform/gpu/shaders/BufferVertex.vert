#version 450

// A quad as a triangle strip, in the colour of the first fragment buffer.

layout(push_constant) uniform Quad { vec4 corners[4]; } quad;
layout(set = 0, binding = 0) uniform First { vec4 value; } first;
layout(location = 0) flat out vec4 color;

void main() {
    color = first.value;
    gl_Position = vec4(quad.corners[gl_VertexIndex].xy, 0.0, 1.0);
}
