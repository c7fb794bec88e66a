// Height and slope of the height image from one fetch a pixel.
// The including shader declares `heightTexture` and `nearestSampler`.
//
// The four pixels that are shaded together fetch four neighbouring texels, one each, and tell one another by
// derivatives: so a step of one texel costs no second fetch. They share the slope then, which no eye can tell: together
// they are hardly larger than a texel.

struct HeightSlope {
    float height;
    vec2 slope;  // per texel, y down
};

// `position` in texels; `texel` is the size of one in texture coordinates.
HeightSlope heightSlopeAt(vec2 position, vec2 texel) {
    vec2 place = vec2(ivec2(gl_FragCoord.xy) & 1);  // of this pixel among the four
    vec2 firstOfFour = position - place * vec2(dFdx(position.x), dFdy(position.y));
    vec2 center = floor(firstOfFour) + place + 0.5;
    float height = texture(sampler2D(heightTexture, nearestSampler), center * texel).r;
    return HeightSlope(height, vec2(dFdx(height), dFdy(height)));
}
