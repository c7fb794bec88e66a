#version 450
#extension GL_EXT_samplerless_texture_functions : require

// Pixel for pixel: the overlay is never scaled.
layout(set = 0, binding = 0) uniform texture2D overlay;
layout(push_constant) uniform Place {
    ivec2 corner;  // of the overlay in the window
};
layout(location = 0) out vec4 color;

void main() {
    color = texelFetch(overlay, ivec2(gl_FragCoord.xy) - corner, 0);
}
