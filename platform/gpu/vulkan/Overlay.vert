#version 450

// One triangle that covers the whole window; the scissor leaves the overlay's part of it.
void main() {
    gl_Position = vec4(gl_VertexIndex == 1 ? 3.0 : -1.0, gl_VertexIndex == 2 ? 3.0 : -1.0, 0.0, 1.0);
}
