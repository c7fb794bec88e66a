// Height and slope of the height image from one fetch a pixel.
// The including shader declares `heightTexture` and `clampingSampler`.
//
// The four pixels that are shaded together fetch four neighbouring texels, one each, and tell one another by derivatives:
// so a step of one texel costs no second fetch. They share the slope then, which no eye can tell: together they are hardly
// larger than a texel.

struct HeightSlope {
    float height;
    vec2 slope;  // per texel, y down
};

HeightSlope heightSlopeAt(vec2 position) {
    ivec2 size = textureSize(sampler2D(heightTexture, clampingSampler), 0);
    vec2 inTexels = position * vec2(size);
    ivec2 place = ivec2(gl_FragCoord.xy) & 1;  // of this pixel among the four
    vec2 firstOfFour = inTexels - vec2(place) * vec2(dFdx(inTexels.x), dFdy(inTexels.y));
    ivec2 texel = clamp(ivec2(firstOfFour) + place, ivec2(0), size - 1);
    float height = texelFetch(sampler2D(heightTexture, clampingSampler), texel, 0).r;
    return HeightSlope(height, vec2(dFdx(height), dFdy(height)));
}
