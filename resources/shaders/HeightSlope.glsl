// Height and slope of the height image between four texels, from one gather.
// The including shader declares `heightTexture` and `clampingSampler`.

struct HeightSlope {
    float height;
    vec2 slope;  // per texel, y down
};

HeightSlope heightSlopeAt(vec2 position, vec2 texel) {
    vec2 meetingPoint = floor(position / texel + 0.5);
    vec2 toFar = position / texel + 0.5 - meetingPoint;  // 0 to 1 from the near texels' centres to the far ones'

    // A gather yields the texels (0, 1), (1, 1), (1, 0), (0, 0) of the four around a corner.
    vec4 heights = textureGather(sampler2D(heightTexture, clampingSampler), meetingPoint * texel);
    vec2 upper = heights.wz;
    vec2 lower = heights.xy;
    vec2 column = mix(upper, lower, toFar.y);
    vec2 row = mix(vec2(upper.x, lower.x), vec2(upper.y, lower.y), toFar.x);
    return HeightSlope(mix(column.x, column.y, toFar.x), vec2(column.y - column.x, row.y - row.x));
}
