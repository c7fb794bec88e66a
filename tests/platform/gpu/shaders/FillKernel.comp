#version 450
#extension GL_EXT_samplerless_texture_functions : require

// A colour from a buffer, with its green from a texture, into every pixel of an image.

layout(local_size_x = 4, local_size_y = 4) in;
layout(set = 0, binding = 1) uniform Style { vec4 color; } style;
layout(set = 1, binding = 2) uniform texture2D greens;
layout(set = 3, binding = 0) uniform writeonly image2D image;

void main() {
    ivec2 pixel = ivec2(gl_GlobalInvocationID.xy);
    if (all(lessThan(pixel, imageSize(image)))) {
        float green = texelFetch(greens, pixel, 0).r;
        imageStore(image, pixel, vec4(style.color.r, green, style.color.ba));
    }
}
